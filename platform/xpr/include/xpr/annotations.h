/* Annotations with which clang proves that guarded fields are only touched under their mutex. No effect
 * elsewhere. */
#ifndef XPR_ANNOTATIONS_H
#define XPR_ANNOTATIONS_H

#if defined(__clang__)
#define XPR_ANNOTATE(x) __attribute__((x))
#else
#define XPR_ANNOTATE(x)
#endif

#define XPR_CAPABILITY(name) XPR_ANNOTATE(capability(name))
#define XPR_SCOPED_CAPABILITY XPR_ANNOTATE(scoped_lockable)
#define XPR_GUARDED_BY(mutex) XPR_ANNOTATE(guarded_by(mutex))
#define XPR_REQUIRES(mutex) XPR_ANNOTATE(requires_capability(mutex))
#define XPR_EXCLUDES(mutex) XPR_ANNOTATE(locks_excluded(mutex))
#define XPR_ACQUIRE(...) XPR_ANNOTATE(acquire_capability(__VA_ARGS__))
#define XPR_RELEASE(...) XPR_ANNOTATE(release_capability(__VA_ARGS__))
#define XPR_NO_ANALYSIS XPR_ANNOTATE(no_thread_safety_analysis)
#define XPR_TRY_ACQUIRE(...) XPR_ANNOTATE(try_acquire_capability(__VA_ARGS__))

#endif
