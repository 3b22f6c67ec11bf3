/* Includes every header of the C library, as a translation unit of real-world weight. */
#include <assert.h>
#include <complex.h>
#include <ctype.h>
#include <errno.h>
#include <fenv.h>
#include <float.h>
#include <inttypes.h>
#include <iso646.h>
#include <limits.h>
#include <locale.h>
#include <math.h>
#include <setjmp.h>
#include <signal.h>
#include <stdalign.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <stdnoreturn.h>
#include <string.h>
#include <tgmath.h>
#include <threads.h>
#include <time.h>
#include <uchar.h>
#include <wchar.h>
#include <wctype.h>

int main(int argc, char **argv)
{
    char buffer[64];
    snprintf(buffer, sizeof buffer, "%d %s", argc, argc > 0 ? argv[0] : "");
    return (int)strlen(buffer) > 0 && isalpha((unsigned char)buffer[0]) ? EXIT_SUCCESS : EXIT_FAILURE;
}
