#include "app/converter/ConverterCommand.h"

int main(int argumentCount, char** arguments) {
    return OrvlogConverter::RunConverter(argumentCount, arguments);
}
