/* The portable runtime: everything that the plug-in needs of the operating system. Functions that can fail
 * return XPR_OK or one of the negative constants of <xpr/error.h>. */
#ifndef XPR_XPR_H
#define XPR_XPR_H

#include <xpr/adapter.h>
#include <xpr/clock.h>
#include <xpr/error.h>
#include <xpr/mutex.h>
#include <xpr/semaphore.h>
#include <xpr/text.h>
#include <xpr/thread.h>
#include <xpr/timer.h>

#endif
