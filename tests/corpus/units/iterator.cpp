//// fault
#include <vector>
int Grow(std::vector<int>& values) {
    auto first = values.begin();
    values.push_back(7);
    return *first; // HERE
}
//// right
#include <vector>
int Grow(std::vector<int>& values) {
    values.push_back(7);
    auto first = values.begin();
    return *first;
}
//// fault
#include <vector>
void Drop(std::vector<int>& values) {
    for (auto at = values.begin(); at != values.end(); ++at) { // HERE
        if (*at == 0) {
            values.erase(at); // HERE
        }
    }
}
//// right
#include <vector>
void Drop(std::vector<int>& values) {
    for (auto at = values.begin(); at != values.end();) {
        if (*at == 0) {
            at = values.erase(at);
        } else {
            ++at;
        }
    }
}
//// fault
#include <vector>
void Repeat(std::vector<int>& values) {
    for (const int value : values) {
        if (value == 3) {
            values.push_back(value); // HERE
        }
    }
}
//// right
#include <vector>
void Repeat(std::vector<int>& values) {
    std::vector<int> repeated = values;
    for (const int value : values) {
        if (value == 3) {
            repeated.push_back(value);
        }
    }
    values = repeated;
}
