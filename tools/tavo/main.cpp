#include "commands/Commands.h"
#include "core/Run.h"

int main(int argc, char** argv) {
    return Brenmoor::Tavo::Run({argv + 1, argv + argc}, Brenmoor::Tavo::Commands());
}
