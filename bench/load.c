/* Loads a library in a fresh process, and says how long that took.
 *
 * velta-bench-load plugin|bare PATH prints: milliseconds, threads and sockets before Init. */
#include <dirent.h>
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>
#include <time.h>
#include <unistd.h>
#include <velta/velta.h>

static double milliseconds(void) {
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return (double)time.tv_sec * 1e3 + (double)time.tv_nsec / 1e6;
}

static int entries(const char* folder, const char* kind) {
    int count = 0;
    DIR* const list = opendir(folder);
    if (list == NULL) return -1;
    for (struct dirent* entry = readdir(list); entry != NULL; entry = readdir(list)) {
        char path[512];
        char target[64] = "";
        if (entry->d_name[0] == '.') continue;
        snprintf(path, sizeof path, "%s/%s", folder, entry->d_name);
        if (readlink(path, target, sizeof target - 1) < 0) target[0] = '\0';
        if (strncmp(target, kind, strlen(kind)) == 0) ++count;
    }
    closedir(list);
    return count;
}

int main(int argc, char** argv) {
    const double start = milliseconds();
    double counting = 0;
    int threads = 0;
    int sockets = 0;
    if (argc != 3) return 2;
    void* const library = dlopen(argv[2], RTLD_NOW);
    if (library == NULL) {
        fprintf(stderr, "velta-bench-load: %s\n", dlerror());
        return 1;
    }
    if (strcmp(argv[1], "plugin") == 0) {
        const double before = milliseconds();
        threads = entries("/proc/self/task", "");
        sockets = entries("/proc/self/fd", "socket:");
        counting = milliseconds() - before;
        VELTA_GetPluginInterfaceFunction get;
        *(void**)&get = dlsym(library, VELTA_ENTRY_GET_PLUGIN_INTERFACE);
        const xplugin_export_interface_t* const plugin = get();
        void* instance = NULL;
        if (plugin->Init() != VELTA_OK || plugin->CreateInstance(&instance) != VELTA_OK) return 1;
    } else {
        int (*init)(long);
        *(void**)&init = dlsym(library, "curl_global_init");
        if (init(3) != 0) return 1; /* everything */
    }
    printf("%f %d %d\n", milliseconds() - start - counting, threads, sockets);
    fflush(stdout);
    _exit(0);
}
