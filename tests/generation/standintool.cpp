// Stands in for the programs of a user: a post-generation command and an EDS checker. Its arguments
// say what it does, one after the other.

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <thread>

int main(int argc, char *argv[])
{
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const std::string value = i + 1 < argc ? argv[i + 1] : "";
        if (argument == "--exit")
            return std::atoi(value.c_str());
        if (argument == "--sleep") {
            std::cout << std::flush;
            std::this_thread::sleep_for(std::chrono::milliseconds(std::atoi(value.c_str())));
        } else if (argument == "--error")
            std::cerr << value << std::flush;
        else if (argument == "--folder")
            std::cout << "in " << std::filesystem::current_path().string() << std::endl;
        else
            std::cout << '[' << argument << ']';
    }
    return 0;
}
