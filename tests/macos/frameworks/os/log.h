#pragma once

// The part of the unified log that the adapters use, as its public documentation describes it.
typedef struct os_log_s* os_log_t;

#ifdef __cplusplus
extern "C" {
#endif
os_log_t os_log_create(const char* subsystem, const char* category);
void os_log(os_log_t log, const char* format, ...); // a macro on the Mac
#ifdef __cplusplus
}
#endif
