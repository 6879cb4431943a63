/* The contract's headers as a C host sees them. */
#include <velta/velta.h>

/* A host fills in the types that it owns, and calls through the tables. */
int c99_host_status(VELTA_ConnectTable* table, void* instance);

int c99_host_status(VELTA_ConnectTable* table, void* instance) {
    int status = VELTA_STATUS_ONLINE;
    const int result = table->GetConnectStatus(instance, &status, NULL);
    return (uint32_t)result == VELTA_E_NO_INTERFACE ? -100 : status;
}
