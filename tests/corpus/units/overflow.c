//// fault
#include <limits.h>
int Next(void) {
    int value = INT_MAX;
    return value + 1; // HERE
}
//// right
#include <limits.h>
unsigned Next(void) {
    unsigned value = UINT_MAX;
    return value + 1U;
}
//// fault
long long Area(int width, int height) {
    if (width > 100000 && height > 100000) {
        long long area = 100001 * 100001; // HERE
        return area;
    }
    return (long long)width * height;
}
//// right
long long Area(int width, int height) {
    if (width > 100000 && height > 100000) {
        long long area = 100001LL * 100001;
        return area;
    }
    return (long long)width * height;
}
//// fault
unsigned Mask(int bits) {
    if (bits == 40) {
        return 1U << bits; // HERE
    }
    return 0;
}
//// right
unsigned long long Mask(int bits) {
    if (bits == 40) {
        return 1ULL << bits;
    }
    return 0;
}
