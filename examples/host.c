/* A host in plain C: loads the plug-in, connects to a device, prints its events, sends one request.
 *
 *     VELTA_PASSWORD=... velta-example-c LIBRARY ADDRESS PORT USER [EVENTS]
 *
 * Ends after EVENTS events (1). */
#define _POSIX_C_SOURCE 200809L

#include <dlfcn.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <velta/velta.h>

enum { ONLINE_SECONDS = 60, EVENT_SECONDS = 60, ANSWER_SIZE = 1 << 20 };

/* What the plug-in's threads tell the main thread. */
static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
static pthread_cond_t event_arrived = PTHREAD_COND_INITIALIZER;
static int event_count = 0;

/* On the plug-in's alarm thread. Everything that it gets is valid during the call only, and the events of all devices
 * wait until it returns: a host copies what it needs and goes. */
static void on_event(void* instance, char* source, tagEVENT_BASE_INFO* event, tagEVENT_EXT_INFO* extension,
                     void* user) {
    (void)instance;
    (void)user;
    printf("event  %s  %s  %s  %s\n", event->dateTime, source, extension != NULL ? "with a picture" : "",
           event->payload);
    pthread_mutex_lock(&lock);
    ++event_count;
    pthread_cond_signal(&event_arrived);
    pthread_mutex_unlock(&lock);
}

static int wait_for_events(int wanted) {
    struct timespec deadline;
    int result = 0;
    clock_gettime(CLOCK_REALTIME, &deadline);
    deadline.tv_sec += EVENT_SECONDS;
    pthread_mutex_lock(&lock);
    while (event_count < wanted && result == 0)
        result = pthread_cond_timedwait(&event_arrived, &lock, &deadline);
    pthread_mutex_unlock(&lock);
    return result;
}

/* The plug-in logs in to its devices every 15 seconds. */
static int wait_until_online(const VELTA_ConnectTable* connection, void* instance) {
    const struct timespec pause = {0, 100000000L};
    int status = VELTA_STATUS_UNKNOWN;
    int i;
    for (i = 0; i < ONLINE_SECONDS * 10 && status == VELTA_STATUS_UNKNOWN; ++i) {
        nanosleep(&pause, NULL);
        if (connection->GetConnectStatus(instance, &status, NULL) != VELTA_OK) return -1;
    }
    return status == VELTA_STATUS_ONLINE ? 0 : -1;
}

static int fail(const char* what) {
    fprintf(stderr, "velta-example-c: %s\n", what);
    return EXIT_FAILURE;
}

/* One device, from connecting to its answer. */
static int use_device(const xplugin_export_interface_t* plugin, void* instance, char** arguments,
                      int events) {
    static char answer[ANSWER_SIZE];
    char request[] =
        "{\"method\":\"GET\",\"uri\":\"/VELTA/System/deviceInfo?format=json&devIndex=1\",\"body\":\"\"}";
    void* table = NULL;
    const VELTA_ConnectTable* connection;
    const VELTA_EventTable* event;
    const VELTA_GatewayTable* gateway;
    char url[256];
    int length;

    if (plugin->QueryInterface(instance, VELTA_KEY_CONNECT, &table) != VELTA_OK) return fail("no connection");
    connection = table;
    if (plugin->QueryInterface(instance, VELTA_KEY_EVENT, &table) != VELTA_OK) return fail("no events");
    event = table;
    if (plugin->QueryInterface(instance, VELTA_KEY_GATEWAY, &table) != VELTA_OK) return fail("no requests");
    gateway = table;

    length =
        snprintf(url, sizeof url, "Connect=TCP/IP;Target=%s;Port=%s;DevIndex=1;", arguments[2], arguments[3]);
    if (length < 0 || (size_t)length >= sizeof url) return fail("the address is too long");
    if (connection->Connect_V2(instance, url, arguments[4], getenv("VELTA_PASSWORD")) != VELTA_OK)
        return fail("the plug-in does not accept the address or the credentials");
    if (wait_until_online(connection, instance) != 0) return fail("the device is not online");
    printf("online\n");

    if (event->SetEventCallBack(instance, on_event, NULL) != VELTA_OK)
        return fail("the device gives no events");
    if (wait_for_events(events) != 0) return fail("no event came");
    event->SetEventCallBack(instance, NULL, NULL);

    /* The answer is cut to the buffer, so one that fills it may not be whole. */
    if (gateway->VELTA_Getway(instance, request, answer, sizeof answer, NULL) != VELTA_OK)
        return fail("the request was not carried out");
    if (strlen(answer) == sizeof answer - 1) return fail("the answer is too long");
    printf("answer %s\n", answer);
    return EXIT_SUCCESS;
}

/* C has no conversion from a pointer to data to one to a function; POSIX promises that their bytes are the same. */
static void find_function(void* library, const char* name, void* function, size_t size) {
    void* found = dlsym(library, name);
    memcpy(function, &found, size);
}

int main(int count, char** arguments) {
    VELTA_GetPluginInterfaceFunction get_interface;
    VELTA_SetConfigFunction set_config;
    const xplugin_export_interface_t* plugin;
    void* library;
    void* instance = NULL;
    const int events = count == 6 ? atoi(arguments[5]) : 1;
    int result;

    if (count < 5 || count > 6 || events < 1 || getenv("VELTA_PASSWORD") == NULL) {
        fprintf(stderr, "usage: VELTA_PASSWORD=... velta-example-c LIBRARY ADDRESS PORT USER [EVENTS]\n");
        return 2;
    }
    library = dlopen(arguments[1], RTLD_NOW);
    if (library == NULL) return fail(dlerror());
    find_function(library, VELTA_ENTRY_GET_PLUGIN_INTERFACE, &get_interface, sizeof get_interface);
    find_function(library, VELTA_ENTRY_SET_CONFIG, &set_config, sizeof set_config);
    if (get_interface == NULL || set_config == NULL) return fail("the library is not the plug-in");

    plugin = get_interface();
    if (plugin->Init() != VELTA_OK) return fail("the plug-in does not start");
    printf("plug-in %s\n", plugin->GetFileVersion());
    if (set_config("SetEventSub", "1") != VELTA_OK || plugin->CreateInstance(&instance) != VELTA_OK) {
        result = fail("no session");
    } else {
        result = use_device(plugin, instance, arguments, events);
    }
    /* When these two have returned, no thread of the plug-in is left. */
    plugin->DestroyInstance(instance);
    plugin->Uninit();
    dlclose(library);
    return result;
}
