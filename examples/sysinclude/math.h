/* A stand-in for the C library's header, enough for the example to parse without one. */
#ifndef _STANDIN_MATH_H
#define _STANDIN_MATH_H
double sqrt(double x);
#endif
