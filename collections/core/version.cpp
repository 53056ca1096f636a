#include <vorn/collections/version.h>

const char* vorn_collections_version(void) { return VORN_COLLECTIONS_VERSION; }
