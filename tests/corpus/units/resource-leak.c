//// fault
#include <stdio.h>
int First(const char *name) {
    FILE *file = fopen(name, "r");
    if (file == NULL) {
        return -1;
    }
    int letter = fgetc(file);
    if (letter == EOF) {
        return -1; // HERE
    }
    fclose(file);
    return letter;
}
//// right
#include <stdio.h>
int First(const char *name) {
    FILE *file = fopen(name, "r");
    if (file == NULL) {
        return -1;
    }
    int letter = fgetc(file);
    fclose(file);
    return letter == EOF ? -1 : letter;
}
//// fault
#include <fcntl.h>
#include <unistd.h>
int Size(const char *name) {
    int file = open(name, O_RDONLY);
    if (file < 0) {
        return -1;
    }
    char bytes[16];
    if (read(file, bytes, sizeof bytes) < 0) {
        return -1; // HERE
    }
    close(file);
    return bytes[0];
}
//// right
#include <fcntl.h>
#include <unistd.h>
int Size(const char *name) {
    int file = open(name, O_RDONLY);
    if (file < 0) {
        return -1;
    }
    char bytes[16] = {0};
    if (read(file, bytes, sizeof bytes) < 0) {
        close(file);
        return -1;
    }
    close(file);
    return bytes[0];
}
//// fault
#include <dirent.h>
int Entries(const char *name) {
    DIR *folder = opendir(name);
    if (folder == NULL) {
        return -1;
    }
    int count = 0;
    while (readdir(folder) != NULL) {
        ++count;
    }
    return count; // HERE
}
//// right
#include <dirent.h>
int Entries(const char *name) {
    DIR *folder = opendir(name);
    if (folder == NULL) {
        return -1;
    }
    int count = 0;
    while (readdir(folder) != NULL) {
        ++count;
    }
    closedir(folder);
    return count;
}
