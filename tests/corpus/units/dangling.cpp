//// fault
#include <string>
const std::string& Name(int number) {
    std::string name = std::to_string(number);
    return name; // HERE
}
//// right
#include <string>
std::string Name(int number) {
    std::string name = std::to_string(number);
    return name;
}
//// fault
#include <string>
const char* Text(const std::string& left, const std::string& right) {
    const char* text = (left + right).c_str(); // HERE
    return text; // HERE
}
//// right
#include <string>
std::string Text(const std::string& left, const std::string& right) {
    return left + right;
}
//// fault
#include <functional>
std::function<int()> Counter(int start) {
    int count = start;
    return [&count] { return ++count; }; // HERE
}
//// right
#include <functional>
std::function<int()> Counter(int start) {
    int count = start;
    return [count]() mutable { return ++count; };
}
