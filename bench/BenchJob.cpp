#include "BenchJob.h"
#include "MMCropCommand.h"
#include "MMMirrorCommand.h"
#include "MMResizeCommand.h"
#include "MMRotateCommand.h"
#include <cstdio>
#include <cstdlib>

namespace {
MMCommand *rotate(int degree)
{
    auto *command = new MMRotateCommand;
    command->setDegree(degree);
    return command;
}

MMCommand *mirrorHorizontal()
{
    auto *command = new MMMirrorCommand;
    command->setMirrorType(true);
    return command;
}

// The centre rectangle of half the width and height of a w x h picture.
MMCommand *cropCentreHalf(int w, int h)
{
    auto *command = new MMCropCommand;
    command->setRect(MMRect(w / 4, h / 4, w / 2, h / 2));
    return command;
}

MMCommand *resizeHalf(int w, int h)
{
    auto *command = new MMResizeCommand;
    command->setTargetSize(MMSize(w / 2 > 0 ? w / 2 : 1, h / 2 > 0 ? h / 2 : 1));
    return command;
}
}

BenchJob::BenchJob(int argc, char **argv)
{
    if (argc < 4)
        return;
    const std::string mode = argv[1];
    m_input = argv[2];
    m_output = argv[3];
    if (mode != "save" && mode != "phases")
        return;
    if (argc < 5)
        return;
    m_name = argv[4];
    if (m_name == "--rotate" || m_name == "--crop") {
        if (argc != 6)
            return;
        m_argument = argv[5];
    } else if (argc != 5) {
        return;
    }
    m_mode = mode == "save" ? Save : Phases;
}

BenchJob::~BenchJob() = default;

void BenchJob::add(MMCommand *command)
{
    m_owned.emplace_back(command);
    m_list.push_back(command);
}

bool BenchJob::buildCommands(int w, int h)
{
    m_owned.clear();
    m_list.clear();
    if (m_name == "--rotate") {
        char *end = nullptr;
        const long degree = std::strtol(m_argument.c_str(), &end, 10);
        if (m_argument.empty() || *end != '\0' || degree % 90 != 0)
            return false;
        add(rotate(int(degree)));
        return true;
    }
    if (m_name == "--crop-centre-half") {
        add(cropCentreHalf(w, h));
        return true;
    }
    if (m_name == "--crop") {
        // WxH+X+Y, as jpegtran -crop takes it.
        int cw = 0, ch = 0, cx = 0, cy = 0;
        char rest = 0;
        if (std::sscanf(m_argument.c_str(), "%dx%d+%d+%d%c", &cw, &ch, &cx, &cy, &rest) != 4)
            return false;
        auto *command = new MMCropCommand;
        command->setRect(MMRect(cx, cy, cw, ch));
        add(command);
        return true;
    }
    if (m_name == "--resize-half") {
        add(resizeHalf(w, h));
        return true;
    }
    if (m_name == "--chain") {
        add(rotate(90));
        add(mirrorHorizontal());
        // After a quarter turn the picture is h wide and w high.
        add(cropCentreHalf(h, w));
        add(resizeHalf(h / 2, w / 2));
        return true;
    }
    return false;
}

const char *BenchJob::usage()
{
    return "usage: vo-bench save IN OUT --rotate DEG | --crop-centre-half | --crop WxH+X+Y | --resize-half | --chain\n"
           "       vo-bench phases IN OUT (same options as save)\n";
}
