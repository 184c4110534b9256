// Writes the manual pages and the completion scripts into a folder, for the build.

#include "commands/Commands.h"
#include "core/Completion.h"
#include "core/Man.h"

#include <fstream>
#include <iostream>

namespace {

using namespace Brenmoor::Tavo;

void Write(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text << std::flush;
    if (!file) {
        throw std::runtime_error("cannot write " + path);
    }
}

void WriteAll(const std::string& folder) {
    CommonOptions options;
    const std::vector<Parameter> common = CommonParameters(options);
    const std::vector<Command> commands = Commands();
    Write(folder + "/tavo.1", ProgramPage(common, commands, TAVO_VERSION));
    for (const Command& command : commands) {
        Write(folder + "/tavo-" + command.name + ".1", CommandPage(command, TAVO_VERSION));
    }
    Write(folder + "/tavo.bash", BashCompletion(common, commands));
    Write(folder + "/_tavo", ZshCompletion(common, commands));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: tavo_pages FOLDER" << std::endl;
        return 2;
    }
    try {
        WriteAll(argv[1]);
    } catch (const std::exception& error) {
        std::cerr << "tavo_pages: " << error.what() << std::endl;
        return 1;
    }
    return 0;
}
