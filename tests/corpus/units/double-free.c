//// fault
#include <stdlib.h>
void Close(int failed) {
    char *buffer = malloc(64);
    if (buffer == NULL) {
        return;
    }
    if (failed) {
        free(buffer);
    }
    buffer[0] = 0; // HERE
    free(buffer); // HERE
}
//// right
#include <stdlib.h>
void Close(int failed) {
    char *buffer = malloc(64);
    if (buffer == NULL) {
        return;
    }
    if (failed) {
        free(buffer);
        return;
    }
    buffer[0] = 0;
    free(buffer);
}
//// fault
#include <stdlib.h>
static void Drop(char *text) {
    free(text);
}
int Twice(void) {
    char *text = malloc(8);
    if (text == NULL) {
        return 1;
    }
    Drop(text);
    free(text); // HERE
    return 0;
}
//// right
#include <stdlib.h>
static void Drop(char **text) {
    free(*text);
    *text = NULL;
}
int Twice(void) {
    char *text = malloc(8);
    if (text == NULL) {
        return 1;
    }
    Drop(&text);
    free(text);
    return 0;
}
//// fault
#include <stdio.h>
int Lines(const char *name) {
    FILE *file = fopen(name, "r");
    if (file == NULL) {
        return -1;
    }
    int first = fgetc(file);
    if (first == EOF) {
        fclose(file);
    }
    fclose(file); // HERE
    return first;
}
//// right
#include <stdio.h>
int Lines(const char *name) {
    FILE *file = fopen(name, "r");
    if (file == NULL) {
        return -1;
    }
    int first = fgetc(file);
    fclose(file);
    return first;
}
