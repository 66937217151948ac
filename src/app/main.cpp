#include "app/Entry.h"
#include "app/TopLevel.h"

int main(int argumentCount, char** arguments) {
    return Orvanta::RunGuarded(Orvanta::RunProgram, argumentCount, arguments);
}
