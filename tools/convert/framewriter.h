#ifndef FRAMEWRITER_H
#define FRAMEWRITER_H

#include <cstdint>
#include <string>
#include <string_view>

/// Values as bytes, one after another, for a process of the same program on the same machine;
/// FrameReader takes them in the same order.
///
/// Written out here, because the streams of Qt 5 end at 2 GB, which the document of one message can
/// have.
class FrameWriter
{
public:
    /// Appends to @p frame, which must outlive the object.
    explicit FrameWriter(std::string* frame) : m_frame(frame) {}

    void number(std::uint64_t value)
    {
        m_frame->append(reinterpret_cast<const char*>(&value), sizeof value);
    }
    void text(std::string_view value)
    {
        number(value.size());
        m_frame->append(value);
    }

private:
    std::string* m_frame;
};

#endif
