// What a settings file must be to be one.

#include "load/settingsfile.h"

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

// Each file has a name of its own: QSettings looks at a file that it knows no second time.
bool qtTakes(const QTemporaryDir& folder, int number, const std::string& content)
{
    const QString path = folder.filePath(QString::number(number));
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content.data(), static_cast<int>(content.size()));
    }
    return QSettings(path, QSettings::IniFormat).status() == QSettings::NoError;
}

TEST(SettingsFile, IsAnIniFileIfQtTakesItForOne)
{
    const QTemporaryDir folder;
    int number = 0;
    const auto compare = [&folder, &number](const std::string& content) {
        EXPECT_EQ(SettingsFile::isIniFile(QByteArray::fromStdString(content)),
                  qtTakes(folder, ++number, content))
            << testing::PrintToString(content);
    };
    for (const char* content :
         {"", "[rules]\na=b\n", "[rules\na=b\n", "[rules", "no section", "; [", "a=[\n[b]",
          "a=\"\n[\"\n", "a=\\\n[\n", "a=b;[\n", "a=b;\n[\n", "\xef\xbb\xbf[a\n", " \t[\n]",
          "[a\\\n]\n", "[\"\n]\"\n", "<xml/>"})
        compare(content);
    std::mt19937 random(7);
    const std::string alphabet = "[]=;\\\"\r\n a";
    for (int round = 0; round < 2000; ++round) {
        std::string content;
        for (size_t i = random() % 12; i > 0; --i)
            content += alphabet[random() % alphabet.size()];
        compare(content);
    }
}

} // namespace
