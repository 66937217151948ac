//// fault
#include <string.h>
void Reset(int *values) {
    memset(values, 0, sizeof(values)); // HERE
}
//// right
#include <string.h>
void Reset(int *values, size_t count) {
    memset(values, 0, count * sizeof(values[0]));
}
//// fault
#include <stdlib.h>
struct Large {
    char text[100];
    int number;
};
struct Large *Make(void) {
    struct Large *large = malloc(sizeof(large)); // HERE
    return large;
}
//// right
#include <stdlib.h>
struct Large {
    char text[100];
    int number;
};
struct Large *Make(void) {
    struct Large *large = malloc(sizeof(*large));
    return large;
}
//// fault
int Count(int values[10]) {
    int count = 0;
    for (unsigned i = 0; i < sizeof(values) / sizeof(values[0]); ++i) { // HERE
        count += values[i];
    }
    return count;
}
//// right
static int values[10];
int Count(void) {
    int count = 0;
    for (unsigned i = 0; i < sizeof(values) / sizeof(values[0]); ++i) {
        count += values[i];
    }
    return count;
}
