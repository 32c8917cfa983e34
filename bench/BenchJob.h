#pragma once
#include <list>
#include <memory>
#include <string>
#include <vector>

class MMCommand;

// One vo-bench job as given on the command line, and the edit commands a
// save of it replays. Owns the commands, as the editor's command list does.
class BenchJob
{
public:
    enum Mode { Invalid, Save, Phases };

    // Reads argv; mode() is Invalid when the arguments make no job.
    BenchJob(int argc, char **argv);
    ~BenchJob();
    BenchJob(const BenchJob &) = delete;
    BenchJob &operator=(const BenchJob &) = delete;

    Mode mode() const { return m_mode; }
    const std::string &input() const { return m_input; }
    const std::string &output() const { return m_output; }
    // The save's option ("--rotate", "--chain", ...).
    const std::string &name() const { return m_name; }

    // Builds the commands for a picture of upright size w x h; false when
    // the option is unknown or its argument bad. Each command sees the
    // picture as the previous ones left it.
    bool buildCommands(int w, int h);
    const std::list<MMCommand *> &commands() const { return m_list; }

    static const char *usage();

private:
    void add(MMCommand *command);

    Mode m_mode = Invalid;
    std::string m_input;
    std::string m_output;
    std::string m_name;
    std::string m_argument;
    std::vector<std::unique_ptr<MMCommand>> m_owned;
    std::list<MMCommand *> m_list;
};
