#include "app/Entry.h"

int main(int argumentCount, char** arguments) {
    return Orvanta::RunProgram(argumentCount, arguments);
}
