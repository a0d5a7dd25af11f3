// SPDX-License-Identifier: MIT
#include "examples/lighttable/Options.h"

#include <cstdlib>
#include <filesystem>
#include <map>

namespace lighttable {

namespace {

using Words = std::vector<std::string>;

std::string absolute(const std::string& path) {
    std::error_code error;
    const auto whole = std::filesystem::absolute(path, error).lexically_normal();
    std::string text = error ? path : whole.string();
    while (text.size() > 1 && text.back() == '/')
        text.pop_back();
    return text;
}

/// False: there is no scene of that name.
bool readScene(const std::string& name, Scene& scene) {
    static const std::map<std::string, Scene> scenes = {{"browser", Scene::Browser},
                                                        {"cameras", Scene::Cameras},
                                                        {"import", Scene::Import},
                                                        {"account", Scene::Account}};
    const auto found = scenes.find(name);
    if (found == scenes.end())
        return false;
    scene = found->second;
    return true;
}

void readValue(const std::string& option, const std::string& value, Options& options) {
    if (option == "--folder")
        options.folder = absolute(value);
    else if (option == "--screenshot")
        options.screenshot = absolute(value);
    else if (!readScene(value, options.scene))
        options.problem = "there is no scene '" + value + "': browser, cameras, import or account";
}

bool takesValue(const std::string& word) {
    return word == "--folder" || word == "--screenshot" || word == "--scene";
}

void readWord(const std::string& word, Options& options) {
    if (word == "--help" || word == "-h")
        options.isHelpWanted = true;
    else if (word == "--quit")
        options.isQuitWanted = true;
    else if (word == "--no-move")
        options.mayMove = false;
    else if (word.starts_with("-"))
        options.problem = "unknown option '" + word + "'";
    else if (!options.folder.empty())
        options.problem = "one folder only, and '" + word + "' is another";
    else
        options.folder = absolute(word);
}

}  // namespace

Options Options::parse(const Words& words) {
    Options options;
    options.mayMove = std::getenv("LIGHTTABLE_NO_MOVE") == nullptr;
    for (std::size_t i = 0; i < words.size() && options.problem.empty(); ++i) {
        if (!takesValue(words[i]))
            readWord(words[i], options);
        else if (i + 1 == words.size() || words[i + 1].empty())
            options.problem = "'" + words[i] + "' wants a value";
        else
            readValue(words[i], words[i + 1], options), ++i;
    }
    return options;
}

const char* Options::usage() {
    return "usage: lighttable [FOLDER]\n"
           "       lighttable --screenshot FILE.png [--folder FOLDER] [--scene SCENE]\n"
           "\n"
           "  --folder FOLDER        the folder to show; without it, the one of last time\n"
           "  --screenshot FILE.png  draws the window into the file and ends\n"
           "  --scene SCENE          what is drawn: browser, cameras, import or account\n"
           "  --quit                 ends the instance that runs\n"
           "  --no-move              does not offer to move into the Applications folder;\n"
           "                         so does the environment variable LIGHTTABLE_NO_MOVE\n"
           "  --help                 this text\n";
}

}  // namespace lighttable
