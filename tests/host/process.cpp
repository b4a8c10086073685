#include "process.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support.hpp"

namespace aaanc::test
{

namespace
{

void redirect(const std::string &file, int to)
{
    const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(descriptor, to);
    close(descriptor);
}

} // namespace

Process::Process(const std::string &directory, const std::vector<std::string> &arguments)
    : output_(directory + "/output"), errors_(directory + "/errors")
{
    std::vector<char *> argv = {const_cast<char *>(AAANC_EXECUTABLE)};
    for (const std::string &argument : arguments) {
        argv.push_back(const_cast<char *>(argument.c_str()));
    }
    argv.push_back(nullptr);
    id_ = fork();
    if (id_ == 0) {
        redirect(output_, STDOUT_FILENO);
        redirect(errors_, STDERR_FILENO);
        if (chdir(directory.c_str()) != 0) {
            _exit(127);
        }
        execv(AAANC_EXECUTABLE, argv.data());
        _exit(127);
    }
}

Outcome Process::wait()
{
    int status = 0;
    if (waitpid(id_, &status, 0) != id_) {
        throw std::runtime_error("no such process");
    }
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), readText(output_),
            readText(errors_)};
}

Outcome runAaanc(const std::vector<std::string> &arguments)
{
    const ScratchDirectory scratch;
    return Process(scratch.path(), arguments).wait();
}

ScratchDirectory::ScratchDirectory()
{
    path_ = std::filesystem::temp_directory_path() / "aaanc-test-XXXXXX";
    if (mkdtemp(path_.data()) == nullptr) {
        throw std::runtime_error("no directory for temporary files");
    }
}

ScratchDirectory::~ScratchDirectory()
{
    std::filesystem::remove_all(path_);
}

std::string ScratchDirectory::write(const std::string &name, const std::string &text) const
{
    std::ofstream(path_ + "/" + name, std::ios::binary) << text;
    return path_ + "/" + name;
}

} // namespace aaanc::test
