//// fault
int Total(void) {
    int values[8];
    int total = 0;
    for (int i = 0; i < 8; ++i) {
        values[i] = i;
    }
    for (int i = 0; i <= 8; ++i) {
        total += values[i]; // HERE
    }
    return total;
}
//// right
int Total(void) {
    int values[8];
    int total = 0;
    for (int i = 0; i < 8; ++i) {
        values[i] = i;
    }
    for (int i = 0; i < 8; ++i) {
        total += values[i];
    }
    return total;
}
//// fault
#include <stdlib.h>
int *Table(void) {
    int *table = malloc(10 * sizeof(int));
    if (table != NULL) {
        table[10] = -1; // HERE
    }
    return table;
}
//// right
#include <stdlib.h>
int *Table(void) {
    int *table = malloc(10 * sizeof(int));
    if (table != NULL) {
        table[9] = -1;
    }
    return table;
}
//// fault
static const char *const Names[] = {"red", "green", "blue"};
const char *NameOf(int color) {
    if (color < 0 || color > 3) {
        return "none";
    }
    if (color == 3) {
        return Names[color]; // HERE
    }
    return Names[color];
}
//// right
static const char *const Names[] = {"red", "green", "blue"};
const char *NameOf(int color) {
    if (color < 0 || color >= (int)(sizeof Names / sizeof Names[0])) {
        return "none";
    }
    return Names[color];
}
