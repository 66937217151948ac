//// fault
#include <pthread.h>
static pthread_mutex_t first = PTHREAD_MUTEX_INITIALIZER;
static pthread_mutex_t second = PTHREAD_MUTEX_INITIALIZER;
int Swap(int value) {
    pthread_mutex_lock(&first);
    pthread_mutex_lock(&second);
    value += 1;
    pthread_mutex_unlock(&first); // HERE
    pthread_mutex_unlock(&second);
    return value;
}
//// right
#include <pthread.h>
static pthread_mutex_t first = PTHREAD_MUTEX_INITIALIZER;
static pthread_mutex_t second = PTHREAD_MUTEX_INITIALIZER;
int Swap(int value) {
    pthread_mutex_lock(&first);
    pthread_mutex_lock(&second);
    value += 1;
    pthread_mutex_unlock(&second);
    pthread_mutex_unlock(&first);
    return value;
}
//// fault
#include <pthread.h>
static pthread_mutex_t guard = PTHREAD_MUTEX_INITIALIZER;
static int counter;
int Count(int step) {
    pthread_mutex_lock(&guard);
    counter += step;
    if (counter > 100) {
        pthread_mutex_lock(&guard); // HERE
        counter = 0;
    }
    pthread_mutex_unlock(&guard);
    return step;
}
//// right
#include <pthread.h>
static pthread_mutex_t guard = PTHREAD_MUTEX_INITIALIZER;
static int counter;
int Count(int step) {
    pthread_mutex_lock(&guard);
    counter += step;
    if (counter > 100) {
        counter = 0;
    }
    pthread_mutex_unlock(&guard);
    return step;
}
//// fault
#include <pthread.h>
static pthread_mutex_t guard = PTHREAD_MUTEX_INITIALIZER;
static int total;
void Add(int value) {
    pthread_mutex_lock(&guard);
    total += value;
    pthread_mutex_unlock(&guard);
    if (value > 0) {
        pthread_mutex_unlock(&guard); // HERE
    }
}
//// right
#include <pthread.h>
static pthread_mutex_t guard = PTHREAD_MUTEX_INITIALIZER;
static int total;
void Add(int value) {
    pthread_mutex_lock(&guard);
    if (value > 0) {
        total += value;
    }
    pthread_mutex_unlock(&guard);
}
