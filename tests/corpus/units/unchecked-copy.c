//// fault
#include <string.h>
int Greet(void) {
    char name[4];
    strcpy(name, "world"); // HERE
    return name[0];
}
//// right
#include <string.h>
int Greet(void) {
    char name[6];
    strcpy(name, "world");
    return name[0];
}
//// fault
#include <string.h>
struct Header {
    char magic[4];
};
void Read(struct Header *header, const char *bytes) {
    memcpy(header->magic, bytes, 8); // HERE
}
//// right
#include <string.h>
struct Header {
    char magic[4];
};
void Read(struct Header *header, const char *bytes) {
    memcpy(header->magic, bytes, sizeof header->magic);
}
//// fault
#include <stdio.h>
int Name(int number) {
    char text[8];
    sprintf(text, "%s-%d", "long-prefix", number); // HERE
    return text[0];
}
//// right
#include <stdio.h>
int Name(int number) {
    char text[32];
    snprintf(text, sizeof text, "%s-%d", "long-prefix", number);
    return text[0];
}
