#include <QCoreApplication>
#include <QNetworkProxy>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    // The tests talk to a server on 127.0.0.1 only; no proxy from the environment in between.
    QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
