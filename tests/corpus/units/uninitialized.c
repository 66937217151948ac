//// fault
int Sum(const int *values, int count) {
    int sum;
    for (int i = 0; i < count; ++i) {
        sum += values[i]; // HERE
    }
    return sum; // HERE
}
//// right
int Sum(const int *values, int count) {
    int sum = 0;
    for (int i = 0; i < count; ++i) {
        sum += values[i];
    }
    return sum;
}
//// fault
#include <stdlib.h>
struct Job {
    int kind;
    int size;
};
int Start(int size) {
    struct Job *job = malloc(sizeof *job);
    if (job == NULL) {
        return -1;
    }
    job->size = size;
    int result = job->kind + job->size; // HERE
    free(job);
    return result;
}
//// right
#include <stdlib.h>
struct Job {
    int kind;
    int size;
};
int Start(int size) {
    struct Job *job = calloc(1, sizeof *job);
    if (job == NULL) {
        return -1;
    }
    job->size = size;
    int result = job->kind + job->size;
    free(job);
    return result;
}
//// fault
int Parse(char sign, int digit) {
    int factor;
    switch (sign) {
    case '+':
        factor = 1;
        break;
    case '-':
        factor = -1;
        break;
    default:
        break;
    }
    return factor * digit; // HERE
}
//// right
int Parse(char sign, int digit) {
    int factor;
    switch (sign) {
    case '-':
        factor = -1;
        break;
    default:
        factor = 1;
        break;
    }
    return factor * digit;
}
