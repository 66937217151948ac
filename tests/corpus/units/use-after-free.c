//// fault
#include <stdlib.h>
struct Node {
    struct Node *next;
};
void Clear(struct Node *list) {
    for (struct Node *node = list; node != NULL; node = node->next) { // HERE
        free(node);
    }
}
//// right
#include <stdlib.h>
struct Node {
    struct Node *next;
};
void Clear(struct Node *list) {
    while (list != NULL) {
        struct Node *next = list->next;
        free(list);
        list = next;
    }
}
//// fault
#include <stdlib.h>
int Last(int count) {
    int *values = malloc(sizeof(int) * 4);
    if (values == NULL) {
        return 0;
    }
    values[0] = count;
    free(values);
    return values[0]; // HERE
}
//// right
#include <stdlib.h>
int Last(int count) {
    int *values = malloc(sizeof(int) * 4);
    if (values == NULL) {
        return 0;
    }
    values[0] = count;
    int last = values[0];
    free(values);
    return last;
}
//// fault
#include <stdlib.h>
#include <string.h>
char *Join(const char *left, const char *right) {
    char *text = malloc(strlen(left) + 1);
    if (text == NULL) {
        return NULL;
    }
    strcpy(text, left);
    char *longer = realloc(text, strlen(left) + strlen(right) + 1);
    if (longer == NULL) {
        free(text);
        return NULL;
    }
    strcat(text, right); // HERE
    return longer;
}
//// right
#include <stdlib.h>
#include <string.h>
char *Join(const char *left, const char *right) {
    char *text = malloc(strlen(left) + 1);
    if (text == NULL) {
        return NULL;
    }
    strcpy(text, left);
    char *longer = realloc(text, strlen(left) + strlen(right) + 1);
    if (longer == NULL) {
        free(text);
        return NULL;
    }
    strcat(longer, right);
    return longer;
}
