#include <Pelluvia/model/Version.h>
#include <Pelluvia/platform/Bookmark.h>
#include <Pelluvia/platform/UserDefaults.h>
#include <Pelluvia/storage/GPSStorageAuthorization.h>

#include <iostream>

using namespace pelluvia;

int main(int argc, char *argv[]) {
    const std::string folder = argc > 1 ? argv[1] : "/";
    UserDefaults::setApplicationIdentifier("org.example.Consumer");
    ErrorPtr error;
    const auto data = Bookmark::bookmarkData(URL::fileURLWithPath(folder), &error);
    if (!data) {
        std::cerr << error->localizedDescription() << '\n';
        return 1;
    }
    GPSStorageAuthorization::setAuthorizedBookmarkData(*data, "/GPS");
    const auto granted = GPSStorageAuthorization::authorizedBookmarkURLForPath("/GPS", nullptr);
    std::cout << (granted ? granted->path() : "nothing") << ' ' << PelluviaVersionNumber << '\n';
    return 0;
}
