//// fault
#include <stdlib.h>
int First(int wanted) {
    int *value = NULL;
    if (wanted > 3) {
        value = malloc(sizeof *value);
        if (value != NULL) {
            *value = wanted;
        }
    }
    int result = *value; // HERE
    free(value);
    return result;
}
//// right
#include <stdlib.h>
int First(int wanted) {
    int *value = NULL;
    int result = 0;
    if (wanted > 3) {
        value = malloc(sizeof *value);
        if (value != NULL) {
            *value = wanted;
            result = *value;
        }
    }
    free(value);
    return result;
}
//// fault
#include <string.h>
struct Node {
    struct Node *next;
    const char *name;
};
const struct Node *Find(const struct Node *node, const char *name) {
    while (node != NULL && strcmp(node->name, name) != 0) {
        node = node->next;
    }
    return node;
}
const char *NameBehind(const struct Node *list) {
    const struct Node *node = list;
    while (node != NULL) {
        node = node->next;
    }
    return node->name; // HERE
}
//// right
#include <string.h>
struct Node {
    struct Node *next;
    const char *name;
};
const char *NameBehind(const struct Node *list) {
    const struct Node *node = list;
    while (node != NULL && node->next != NULL) {
        node = node->next;
    }
    return node != NULL ? node->name : "";
}
//// fault
struct Point {
    int x;
    int y;
};
int Width(const struct Point *left, const struct Point *right) {
    int width = right->x - left->x; // HERE
    if (left == 0 || right == 0) { // HERE
        return 0;
    }
    return width;
}
//// right
struct Point {
    int x;
    int y;
};
int Width(const struct Point *left, const struct Point *right) {
    if (left == 0 || right == 0) {
        return 0;
    }
    return right->x - left->x;
}
