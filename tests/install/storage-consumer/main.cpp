// SPDX-License-Identifier: MIT

#include <Pelluvia/model/Version.h>
#include <Pelluvia/storage/Bookmark.h>
#include <Pelluvia/storage/GPSStorageAuthorization.h>
#include <Pelluvia/storage/UserDefaults.h>

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
