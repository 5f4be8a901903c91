// Draws the PNG sizes of an SVG icon for the hicolor icon theme at build
// time, so that the SVG stays the one source of the icon:
//   kaldo_icon_pictures ICON.svg OUTDIR SIZE...
// writes OUTDIR/<SIZE>x<SIZE>/apps/<name of ICON>.png for every size.
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <iostream>

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    if (argc < 4) {
        std::cerr << "usage: kaldo_icon_pictures ICON.svg OUTDIR SIZE...\n";
        return 64;
    }
    const QString source = QString::fromLocal8Bit(argv[1]);
    QSvgRenderer renderer(source);
    if (!renderer.isValid()) {
        std::cerr << "kaldo_icon_pictures: cannot read " << argv[1] << "\n";
        return 2;
    }
    const QString name = QFileInfo(source).completeBaseName() + ".png";
    for (int i = 3; i < argc; ++i) {
        const int size = QString::fromLocal8Bit(argv[i]).toInt();
        if (size <= 0) {
            std::cerr << "kaldo_icon_pictures: not a size: " << argv[i] << "\n";
            return 64;
        }
        const QString folder = QStringLiteral("%1/%2x%2/apps").arg(QString::fromLocal8Bit(argv[2])).arg(size);
        QImage picture(size, size, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        {
            QPainter painter(&picture);
            painter.setRenderHint(QPainter::Antialiasing);
            renderer.render(&painter);
        }
        if (!QDir().mkpath(folder) || !picture.save(folder + "/" + name, "PNG")) {
            std::cerr << "kaldo_icon_pictures: cannot write " << (folder + "/" + name).toStdString() << "\n";
            return 2;
        }
    }
    return 0;
}
