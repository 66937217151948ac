#include "app/TopLevel.h"
#include "app/converter/ConverterCommand.h"

int main(int argumentCount, char** arguments) {
    return Orvanta::RunGuarded(OrvlogConverter::RunConverter, argumentCount, arguments);
}
