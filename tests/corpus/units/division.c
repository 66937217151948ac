//// fault
int Average(const int *values, int count) {
    int sum = 0;
    for (int i = 0; i < count; ++i) {
        sum += values[i];
    }
    if (count == 0) {
        return sum / count; // HERE
    }
    return sum;
}
//// right
int Average(const int *values, int count) {
    int sum = 0;
    for (int i = 0; i < count; ++i) {
        sum += values[i];
    }
    return count == 0 ? 0 : sum / count;
}
//// fault
static int Scale(int factor) {
    return 1000 / factor; // HERE
}
int Zero(void) {
    return Scale(0); // HERE
}
//// right
static int Scale(int factor) {
    return 1000 / factor;
}
int Ten(void) {
    return Scale(10);
}
//// fault
unsigned Bucket(unsigned hash, unsigned size) {
    unsigned slot = hash % size; // HERE
    if (size == 0) { // HERE
        return 0;
    }
    return slot;
}
//// right
unsigned Bucket(unsigned hash, unsigned size) {
    if (size == 0) {
        return 0;
    }
    return hash % size;
}
