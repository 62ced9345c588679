// Writes a file out of a Qt library's resources, so that the page carries the very channel script of the Qt it is
// built with.
// usage: extract_resource RESOURCE TARGET

#include <QFile>
#include <QTextStream>
#include <QWebChannel>

int main(int argc, char *argv[])
{
    QTextStream errors(stderr);
    if (argc != 3) {
        errors << "usage: extract_resource RESOURCE TARGET\n";
        return 2;
    }
    // A library that nothing is taken from is not linked, and its resources are not there.
    const QWebChannel channel;
    QFile source(QFile::decodeName(argv[1]));
    if (!source.open(QIODevice::ReadOnly)) {
        errors << argv[1] << ": " << source.errorString() << '\n';
        return 1;
    }
    QFile target(QFile::decodeName(argv[2]));
    if (!target.open(QIODevice::WriteOnly) || target.write(source.readAll()) < 0 || !target.flush()) {
        errors << argv[2] << ": " << target.errorString() << '\n';
        return 1;
    }
    return 0;
}
