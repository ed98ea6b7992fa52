#ifndef FRAMEREADER_H
#define FRAMEREADER_H

#include <cstdint>
#include <cstring>
#include <string_view>

/// Takes the values that a FrameWriter wrote, in the same order.
class FrameReader
{
public:
    /// Reads @p frame, which must outlive the object and the texts it gives.
    explicit FrameReader(std::string_view frame) : m_rest(frame) {}

    std::uint64_t number()
    {
        std::uint64_t value = 0;
        std::memcpy(&value, m_rest.data(), sizeof value);
        m_rest.remove_prefix(sizeof value);
        return value;
    }
    std::string_view text()
    {
        const std::uint64_t size = number();
        const std::string_view value = m_rest.substr(0, size);
        m_rest.remove_prefix(size);
        return value;
    }

private:
    std::string_view m_rest;
};

#endif
