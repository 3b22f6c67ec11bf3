/* Shapes and their measures. */
#ifndef GEOMETRY_H
#define GEOMETRY_H

#define PI 3.14159265358979

typedef struct {
    double x, y;
} Point;

double distance(Point a, Point b);
double circleArea(double radius);

#endif
