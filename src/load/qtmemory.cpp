#include "load/qtmemory.h"

#include <QFileInfo>

#include <algorithm>
#include <cstddef>
#include <new>

namespace {

// What Qt needs for the first call, and for buffers whose size does not depend on the file.
constexpr std::size_t Fixed = std::size_t(128) << 10;

// More than Qt 5.15 and Qt 6.4 need at the peak, for files made to cost as much as possible.
constexpr std::size_t PerSettingsByte = 128; // files of nothing but short sections
constexpr std::size_t PerXmlByte = 16;
constexpr std::size_t PerNode = 512;       // for each '<': at most an element and a text
constexpr std::size_t PerAttribute = 2560; // the first of an element needs a table

void require(std::size_t bytes)
{
    ::operator delete(::operator new(bytes)); // never optimised away, unlike new and delete
}

std::size_t count(const QByteArray& bytes, char c)
{
    return static_cast<std::size_t>(std::count(bytes.cbegin(), bytes.cend(), c));
}

} // namespace

void QtMemory::requireForSettings(const QString& path)
{
    require(Fixed + PerSettingsByte * static_cast<std::size_t>(QFileInfo(path).size()));
}

void QtMemory::requireForDom(const QByteArray& xml)
{
    require(Fixed + PerXmlByte * static_cast<std::size_t>(xml.size()) + PerNode * count(xml, '<') +
            PerAttribute * count(xml, '='));
}
