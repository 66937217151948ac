//// fault
int InRange(int value) {
    if (value < 0 && value > 100) { // HERE
        return 0;
    }
    return 1;
}
//// right
int InRange(int value) {
    if (value < 0 || value > 100) {
        return 0;
    }
    return 1;
}
//// fault
int Left(unsigned used, unsigned size) {
    if (size - used < 0) { // HERE
        return -1;
    }
    return (int)(size - used);
}
//// right
int Left(unsigned used, unsigned size) {
    if (size < used) {
        return -1;
    }
    return (int)(size - used);
}
//// fault
int Level(int speed) {
    if (speed > 10) {
        return 1;
    } else if (speed > 20) { // HERE
        return 2;
    }
    return 0;
}
//// right
int Level(int speed) {
    if (speed > 20) {
        return 2;
    } else if (speed > 10) {
        return 1;
    }
    return 0;
}
