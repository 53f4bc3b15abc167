#pragma once

// The dispatch to the main queue, as much of it as the page needs.

typedef void (*dispatch_function_t)(void* context);
typedef struct MainDispatchQueue* dispatch_queue_t;

#ifdef __cplusplus
extern "C" {
#endif

dispatch_queue_t dispatch_get_main_queue(void);
void dispatch_sync_f(dispatch_queue_t queue, void* context, dispatch_function_t work);

#ifdef __cplusplus
}
#endif
