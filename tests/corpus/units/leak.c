//// fault
#include <stdlib.h>
#include <string.h>
int Count(const char *text) {
    char *copy = malloc(strlen(text) + 1);
    if (copy == NULL) {
        return -1;
    }
    strcpy(copy, text);
    if (copy[0] == '#') {
        return 0; // HERE
    }
    int length = (int)strlen(copy);
    free(copy);
    return length;
}
//// right
#include <stdlib.h>
#include <string.h>
int Count(const char *text) {
    char *copy = malloc(strlen(text) + 1);
    if (copy == NULL) {
        return -1;
    }
    strcpy(copy, text);
    int length = 0;
    if (copy[0] != '#') {
        length = (int)strlen(copy);
    }
    free(copy);
    return length;
}
//// fault
#include <stdlib.h>
char *Grow(char *buffer, size_t size) {
    buffer = malloc(16); // HERE
    buffer = malloc(size); // HERE
    return buffer;
}
//// right
#include <stdlib.h>
char *Grow(char *buffer, size_t size) {
    char *grown = realloc(buffer, size);
    if (grown == NULL) {
        free(buffer);
    }
    return grown;
}
//// fault
#include <stdlib.h>
int Fill(int **slots, int count) {
    int *values = calloc((size_t)count, sizeof *values);
    int *more = calloc((size_t)count, sizeof *more);
    if (values == NULL || more == NULL) {
        return -1; // HERE
    }
    slots[0] = values;
    slots[1] = more;
    return 0;
}
//// right
#include <stdlib.h>
int Fill(int **slots, int count) {
    int *values = calloc((size_t)count, sizeof *values);
    int *more = calloc((size_t)count, sizeof *more);
    if (values == NULL || more == NULL) {
        free(values);
        free(more);
        return -1;
    }
    slots[0] = values;
    slots[1] = more;
    return 0;
}
