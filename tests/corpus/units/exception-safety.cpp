//// fault
struct Handle {
    explicit Handle(int number) : number_(number) {}
    ~Handle() {
        if (number_ < 0) {
            throw number_; // HERE
        }
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    int number_;
};
//// right
struct Handle {
    explicit Handle(int number) : number_(number) {}
    ~Handle() { number_ = 0; }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    int number_;
};
//// fault
int Parse(const char* text) noexcept {
    if (text == nullptr) {
        throw 1; // HERE
    }
    return text[0];
}
//// right
int Parse(const char* text) {
    if (text == nullptr) {
        throw 1;
    }
    return text[0];
}
//// fault
#include <cstddef>
void Use(const int* values);
int Work(std::size_t count) {
    int* values = new int[count];
    values[0] = 1;
    if (count > 1000) {
        throw count; // HERE
    }
    Use(values);
    delete[] values;
    return 0;
}
//// right
#include <cstddef>
void Use(const int* values);
int Work(std::size_t count) {
    if (count > 1000) {
        throw count;
    }
    int* values = new int[count];
    values[0] = 1;
    Use(values);
    delete[] values;
    return 0;
}
