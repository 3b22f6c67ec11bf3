#include <math.h>

#include "geometry.h"

double distance(Point a, Point b) {
    double dx = a.x - b.x, dy = a.y - b.y;
    return sqrt(dx * dx + dy * dy);
}

double circleArea(double radius) {
#ifdef USE_TAU
    return TAU / 2 * radius * radius;
#else
    return PI * radius * radius;
#endif
}
