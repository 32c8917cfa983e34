#pragma once
#include "MMImageInfo.h"
#include <string>

// A handle on an image file. It holds only the path; every reader opens the
// file afresh, so a handle never keeps the file open.
class MMImageSource
{
public:
    enum ImageSourceType { SOURCE_FILE = 0, SOURCE_ELEMENT = 1 };

    explicit MMImageSource(ImageSourceType type = SOURCE_FILE);
    MMImageSource(const MMImageSource &other) = default;
    MMImageSource &operator=(const MMImageSource &other) = default;
    virtual ~MMImageSource();

    ImageSourceType getType() const { return m_type; }
    // Path as UTF-8 bytes. Returns 0.
    int setFile(const std::string &utf8Path);
    std::string getFileName() const { return m_path; }

    // Reads the header only. 0 on success; -1 (and a zero-sized info) for a
    // missing file, a file that is no image, or absurd dimensions.
    int getImageInfo(MMImageInfo &info) const;

private:
    ImageSourceType m_type;
    std::string m_path;
};
