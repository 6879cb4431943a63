#ifndef XPR_TEXT_H
#define XPR_TEXT_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* As strcmp; a null text sorts before every other and equals null. */
int XPR_Strcmp(const char* a, const char* b);

/* Copies at most count characters of source (fewer when it ends earlier) into target, which holds capacity
 * bytes, and always terminates: at most capacity - 1 characters arrive. A null target or a capacity of 0
 * writes nothing; a null source reads as empty. Returns target. */
char* XPR_Strncpy(char* target, size_t capacity, const char* source, size_t count);

/* The decimal integer at the start of the text, after blanks and a sign; 0 when there is none or the text is
 * null. Beyond the range of int32_t the nearest end of the range. */
int32_t XPR_Atoi32(const char* text);

#ifdef __cplusplus
}
#endif

#endif
