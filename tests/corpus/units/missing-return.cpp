//// fault
int Sign(int value) {
    if (value > 0) {
        return 1;
    } else if (value < 0) {
        return -1; // HERE
    } // HERE
} // HERE
//// right
int Sign(int value) {
    if (value > 0) {
        return 1;
    } else if (value < 0) {
        return -1;
    }
    return 0;
}
//// fault
enum class Color { Red, Green, Blue };
const char* Name(Color color) {
    switch (color) {
    case Color::Red:
        return "red";
    case Color::Green:
        return "green";
    default:
        break; // HERE
    } // HERE
} // HERE
//// right
enum class Color { Red, Green, Blue };
const char* Name(Color color) {
    switch (color) {
    case Color::Red:
        return "red";
    case Color::Green:
        return "green";
    default:
        break;
    }
    return "blue";
}
//// fault
struct Number {
    Number& operator=(const Number& other) { // HERE
        value = other.value;
    } // HERE
    int value = 0;
};
//// right
struct Number {
    Number& operator=(const Number& other) {
        value = other.value;
        return *this;
    }
    int value = 0;
};
