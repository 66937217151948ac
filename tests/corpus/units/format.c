//// fault
#include <stdio.h>
void Show(const char *name, long size) {
    printf("%s has %d bytes\n", name, size); // HERE
}
//// right
#include <stdio.h>
void Show(const char *name, long size) {
    printf("%s has %ld bytes\n", name, size);
}
//// fault
#include <stdio.h>
void Log(int code) {
    fprintf(stderr, "code %d: %s\n", code); // HERE
}
//// right
#include <stdio.h>
void Log(int code) {
    fprintf(stderr, "code %d: %s\n", code, code == 0 ? "done" : "failed");
}
//// fault
#include <stdio.h>
int Read(const char *text) {
    short number = 0;
    sscanf(text, "%d", &number); // HERE
    return number;
}
//// right
#include <stdio.h>
int Read(const char *text) {
    short number = 0;
    if (sscanf(text, "%hd", &number) != 1) {
        return -1;
    }
    return number;
}
