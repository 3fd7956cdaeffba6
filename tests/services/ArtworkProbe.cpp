#include <QCoreApplication>
#include <QSocketNotifier>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <iostream>
#include <string>

#include "linux/desktop/QtArtworkLoader.h"
#include "linux/desktop/QtRunLoop.h"
#include "linux/system/ThreadWorkQueue.h"

// Loads the picture at the address on each line of input, and prints its size and its first pixel, or "nothing". Trusts
// the certificate in the file that is its argument, if any.
int main(int argc, char* argv[]) {
    std::ios::sync_with_stdio(false);
    const QCoreApplication application(argc, argv);
    if (argc > 1) {
        auto configuration = QSslConfiguration::defaultConfiguration();
        configuration.addCaCertificates(QSslCertificate::fromPath(QString::fromLocal8Bit(argv[1])));
        QSslConfiguration::setDefaultConfiguration(configuration);
    }
    sunpane::QtRunLoop runLoop;
    sunpane::ThreadWorkQueueFactory queues;
    sunpane::QtArtworkLoader loader(runLoop, queues);
    const auto print = [](const std::shared_ptr<const sunpane::Artwork>& artwork) {
        if (!artwork) {
            std::cout << "nothing" << std::endl;
            return;
        }
        std::cout << artwork->width << "x" << artwork->height;
        for (std::size_t i = 0; i < 4; ++i)
            std::cout << " " << int{artwork->rgba.at(i)};
        std::cout << std::endl;
    };
    QSocketNotifier input(0, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        // The notifier tells of what has not been read; lines that came together have been, with the first of them.
        do {
            std::string line;
            if (!std::getline(std::cin, line)) return QCoreApplication::quit();
            loader.load(line, print);
        } while (std::cin.rdbuf()->in_avail() > 0);
    });
    return QCoreApplication::exec();
}
