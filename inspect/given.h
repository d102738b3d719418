// What the command line says, made the options of a command.
#pragma once

#include "inspect/options.h"
#include "inspect/other_user.h"

#include <string>
#include <vector>

namespace rcp::inspect {

struct Command {
    const char* name;
    const char* description;
    int (*carryOut)(const Options&);
    std::vector<const char*> formats;
};

/// What a command line says beside what is an option as it stands.
struct Given {
    std::vector<std::string> subjects;
    std::vector<std::string> format;
    std::string installation;
    std::string launcher;
    std::string root;
    std::string other;
    bool isPathEmpty = false;  // of --install or --launcher, from a variable that is not set
    bool isStaged = false;     // --root is given
    bool showsSecrets = false;
    OtherUser user;
};

struct Settled {
    Options options;
    std::string problem;  // with the command line; empty when there is none
};

/// Settles the options, the user and the tree.
Settled settle(Given given, const Command& command, Options options);

}  // namespace rcp::inspect
