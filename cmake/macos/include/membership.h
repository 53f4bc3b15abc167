#pragma once

#include <sys/types.h>

// As much of macOS's membership.h as is used. Since macOS 10.4.

#define ID_TYPE_UID 0
#define ID_TYPE_GID 1

#ifdef __cplusplus
extern "C" {
#endif
int mbr_uuid_to_id(const unsigned char identity[16], id_t* identifier, int* type);
#ifdef __cplusplus
}
#endif
