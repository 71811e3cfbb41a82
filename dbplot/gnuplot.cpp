#include "dbplot/gnuplot.h"

#include "dbapi/words/text_rules.h"
#include "dbif/host/host_string.h"

#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>

namespace dbapi {
namespace {
const char* terminal_command(const std::string& file)
{
    return file.ends_with(".png")
               ? "set terminal pngcairo size 1200,750 noenhanced background 'white' font 'sans,13'\n"
               : "set terminal svg size 960,600 dynamic noenhanced background 'white' font 'sans,13'\n";
}

/// Why the file cannot be written; empty when it is.
std::string write_file(const QByteArray& bytes, const std::string& file)
{
    QSaveFile out(dbif::to_qt(file));
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit()) {
        return "the file " + dbapi::quoted(file) +
               " cannot be written: " + dbif::to_utf8(out.errorString()) + ".";
    }
    return {};
}

/// gnuplot's complaint, without the script that it repeats.
std::string complaint(const QByteArray& talk)
{
    const std::string text = dbif::trimmed(talk.toStdString());
    const std::size_t line = text.rfind('\n');
    return line == std::string::npos ? text : text.substr(line + 1);
}
} // namespace

std::string missing_gnuplot()
{
    return QStandardPaths::findExecutable(QStringLiteral("gnuplot")).isEmpty()
               ? "pictures are drawn by gnuplot, which is not installed. Install Debian's package "
                 "gnuplot-nox, or keep the script for elsewhere as FILE.gp."
               : "";
}

std::string draw_with_gnuplot(const std::string& script, const std::string& file)
{
    if (std::string missing = missing_gnuplot(); !missing.empty()) {
        return missing;
    }
    QProcess gnuplot;
    // Nobody's own settings; the image comes over standard output, so that no file name is read as
    // a command.
    gnuplot.start(
        QStringLiteral("gnuplot"), {QStringLiteral("--default-settings"), QStringLiteral("-")});
    gnuplot.write(QByteArray::fromStdString(terminal_command(file) + script));
    gnuplot.closeWriteChannel();
    const bool isDone = gnuplot.waitForFinished(-1);
    const QByteArray image = gnuplot.readAllStandardOutput();
    if (!isDone || gnuplot.exitStatus() != QProcess::NormalExit || gnuplot.exitCode() != 0 ||
        image.isEmpty()) {
        return "gnuplot could not draw the picture: " + complaint(gnuplot.readAllStandardError()) +
               "\nTo look into it, keep the script as FILE.gp.";
    }
    return write_file(image, file);
}

std::string keep_script(const std::string& script, const std::string& file)
{
    const std::string remark =
        "# A picture by dbapi, with its data. In a window: gnuplot -persist THIS_FILE\n"
        "# As a file: gnuplot -e \"set terminal svg; set output 'picture.svg'\" THIS_FILE\n";
    // "reset" would not undo a terminal, so both ways work.
    return write_file(QByteArray::fromStdString(remark + script), file);
}
} // namespace dbapi
