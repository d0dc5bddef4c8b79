#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

/// Throws where the file cannot be written.
inline void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        throw std::runtime_error("cannot write a test file");
}

/// Nothing where the file cannot be read.
inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline QByteArray asByteArray(const std::vector<std::uint8_t> &bytes)
{
    return {reinterpret_cast<const char *>(bytes.data()), static_cast<int>(bytes.size())};
}

/// A folder of files that goes with its test. Names are in UTF-8, as the SDK takes them.
class FileFolder
{
public:
    std::string path(const std::string &name = {}) const
    {
        return folder.filePath(QString::fromStdString(name)).toStdString();
    }
    /// Writes a file and gives its full name.
    std::string write(const std::string &name, const QByteArray &bytes) const
    {
        writeFile(QString::fromStdString(path(name)), bytes);
        return path(name);
    }
    std::string write(const std::string &name, const std::vector<std::uint8_t> &bytes) const
    {
        return write(name, asByteArray(bytes));
    }
    QByteArray read(const std::string &name) const { return readFile(QString::fromStdString(path(name))); }
    /// What is in it, hidden files too.
    QStringList entries() const
    {
        return QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

private:
    QTemporaryDir folder;
};
