// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/XMLParser.h>

#include <Pelluvia/system/Log.h>

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <tests/support/RecordingXMLDelegate.h>
#include <tests/support/TemporaryFolder.h>
#include <unistd.h>

/// \file
/// External entities: what is read, what is refused, and that neither is an error.

namespace pelluvia {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::RecordingXMLDelegate;
using testing::TemporaryFolder;

class XMLExternalEntities : public ::testing::Test {
  protected:
    XMLExternalEntities() {
        setLogSink([this](std::string_view line) { log.emplace_back(line); });
        fs::create_directories(home());
    }
    ~XMLExternalEntities() override { setLogSink({}); }

    /// The folder of the document; there are files outside it, too.
    [[nodiscard]] fs::path home() const { return outside.path() / "home"; }

    /// Writes a file into the folder of the document.
    void write(std::string_view name, std::string_view content) const {
        fs::create_directories((home() / name).parent_path());
        testing::writeFile(home() / name, content);
    }

    /// The events of the document at a path.
    std::string eventsAt(const std::string &path, bool resolves = true) {
        RecordingXMLDelegate delegate;
        const auto parser = XMLParser::initWithContentsOfURL(URL::fileURLWithPath(path));
        parser->setDelegate(&delegate);
        parser->setShouldResolveExternalEntities(resolves);
        parser->parse();
        error = parser->parserError();
        return delegate.text();
    }

    /// The events of a document in the folder.
    std::string eventsOf(std::string_view document, bool resolves = true) {
        write("document.xml", document);
        return eventsAt((home() / "document.xml").string(), resolves);
    }

    /// The text of `<a>&e;</a>`, where e has a system identifier. Empty when it is refused.
    std::string textOf(std::string_view systemIdentifier) {
        const std::string events = eventsOf("<!DOCTYPE a [<!ENTITY e SYSTEM \"" +
                                            std::string(systemIdentifier) + "\">]><a>&e;</a>");
        EXPECT_EQ(error, nullptr) << events;
        const std::size_t start = events.find("text \"");
        return start == std::string::npos
                   ? std::string()
                   : events.substr(start + 6, events.find("\"\n", start) - start - 6);
    }

    /// Expects that an entity is refused for a reason, with one line in the log.
    void expectRefused(const std::string &systemIdentifier, const std::string &reason) {
        log.clear();
        EXPECT_EQ(textOf(systemIdentifier), "");
        EXPECT_THAT(log, ElementsAre("External entity \"" + systemIdentifier +
                                     "\" was not read: " + reason));
    }

    TemporaryFolder outside;
    std::vector<std::string> log;
    ErrorPtr error;
};

constexpr const char *elsewhere = "outside the folder of the document";

TEST_F(XMLExternalEntities, AreReadFromTheFolderAndBelowIt) {
    write("e.txt", "text");
    write("sub/f.txt", "deep");
    write("with space.txt", "space");
    EXPECT_EQ(textOf("e.txt"), "text");
    EXPECT_EQ(textOf("./sub/../e.txt"), "text");
    EXPECT_EQ(textOf("sub/f.txt"), "deep");
    EXPECT_EQ(textOf("with%20space.txt"), "space");
    EXPECT_EQ(textOf("with space.txt"), "space");
    EXPECT_EQ(textOf((home() / "e.txt").string()), "text");
    EXPECT_EQ(textOf("file://" + (home() / "e.txt").string()), "text");
    EXPECT_EQ(textOf("file://localhost" + (home() / "e.txt").string()), "text");
    EXPECT_EQ(textOf("../home/e.txt"), "text");
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(XMLExternalEntities, MayHoldMarkupAndBeReferredToAgain) {
    write("e.xml", "<?xml version='1.0' encoding='UTF-8'?>\n<b c='1'>x&amp;\r\ny</b>");
    const std::string element = "start b c=\"1\"\ntext \"x&\ny\"\nend b\n";
    EXPECT_EQ(eventsOf("<!DOCTYPE a [<!ENTITY e SYSTEM 'e.xml'>]><a>&e;&e;</a>"),
              "start a\ntext \"\n\"\n" + element + "text \"\n\"\n" + element + "end a\n");
}

TEST_F(XMLExternalEntities, HaveEncodingsOfTheirOwn) {
    write("latin", "<?xml encoding='ISO-8859-1'?>\xE4");
    write("wide", std::string("\xFF\xFE\xE4\0", 4));
    write("marked", "\xEF\xBB\xBF\xC3\xA4");
    EXPECT_EQ(textOf("latin"), "\xC3\xA4");
    EXPECT_EQ(textOf("wide"), "\xC3\xA4");
    EXPECT_EQ(textOf("marked"), "\xC3\xA4");
}

TEST_F(XMLExternalEntities, AreNotReadUnlessThatIsTurnedOn) {
    write("e.txt", "text");
    write("e.dtd", "<!ENTITY f 'f'>");
    EXPECT_EQ(eventsOf("<!DOCTYPE a SYSTEM 'e.dtd' [<!ENTITY e SYSTEM 'e.txt'>"
                       "<!ENTITY % p SYSTEM 'e.dtd'>%p;]><a>&e;&f;</a>",
                       false),
              "start a\nend a\n");
    EXPECT_EQ(error, nullptr);
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(XMLExternalEntities, ThatAreMissingAddNoText) {
    write("e.txt", "text");
    EXPECT_EQ(eventsOf("<!DOCTYPE a [<!ENTITY e SYSTEM 'none.txt'><!ENTITY f SYSTEM 'e.txt'>]>"
                       "<a>1&e;2&e;3&f;4</a>"),
              "start a\ntext \"123text4\"\nend a\n");
    EXPECT_THAT(log, ElementsAre("External entity \"none.txt\" was not read: "
                                 "No such file or directory"));
}

TEST_F(XMLExternalEntities, OutsideTheFolderAreRefused) {
    testing::writeFile(outside.path() / "secret", "secret");
    testing::writeFile(outside.path() / "home2", "secret");
    expectRefused("../secret", elsewhere);
    expectRefused("sub/../../secret", "No such file or directory");
    expectRefused("%2e%2e/secret", elsewhere);
    expectRefused("../home2", elsewhere);
    expectRefused((outside.path() / "secret").string(), elsewhere);
    expectRefused("file://" + (outside.path() / "secret").string(), elsewhere);
    expectRefused("/etc/passwd", elsewhere);
    expectRefused("/proc/self/environ", elsewhere);
    expectRefused("..", elsewhere);
    expectRefused(".", elsewhere);
    expectRefused("/", elsewhere);
}

TEST_F(XMLExternalEntities, BehindLinksThatLeadOutAreRefused) {
    testing::writeFile(outside.path() / "secret", "secret");
    write("real/e.txt", "text");
    fs::create_symlink(outside.path() / "secret", home() / "link");
    fs::create_directory_symlink(outside.path(), home() / "up");
    fs::create_symlink("real/e.txt", home() / "good");
    fs::create_symlink("endless", home() / "endless");
    expectRefused("link", elsewhere);
    expectRefused("up/secret", elsewhere);
    expectRefused("endless", "Too many levels of symbolic links");
    EXPECT_EQ(textOf("good"), "text");
    EXPECT_EQ(textOf("up/home/real/e.txt"), "text");
}

TEST_F(XMLExternalEntities, FromElsewhereThanFilesAreRefused) {
    expectRefused("http://localhost:1/e.xml", "only files are read");
    expectRefused("ftp://localhost/e.xml", "only files are read");
    expectRefused("php://filter/read=x/resource=/etc/passwd", "only files are read");
    expectRefused("C:e.xml", "only files are read");
    expectRefused("file://server/share/e.xml", "only files of this computer are read");
    expectRefused("//server/e.xml", "only files of this computer are read");
    expectRefused("e%00.txt", "not the name of a file");
    expectRefused("%zz", "not the name of a file");
    expectRefused("", "not the name of a file");
    expectRefused("file:", "not the name of a file");
}

TEST_F(XMLExternalEntities, ThatAreNoRegularFilesAreRefused) {
    ASSERT_EQ(::mkfifo((home() / "pipe").c_str(), 0600), 0);
    fs::create_directory(home() / "sub");
    expectRefused("pipe", "not a regular file");
    expectRefused("sub", "not a regular file");
    fs::create_symlink("/dev/zero", home() / "zero");
    expectRefused("zero", elsewhere);
}

TEST_F(XMLExternalEntities, ThatAreTooLargeAreRefused) {
    write("large", std::string(xmlLimits::externalEntitySize / 2 + 1, ' '));
    write("sparse", "");
    fs::resize_file(home() / "sparse", 1'000'000'000'000);
    expectRefused("sparse", "too large");
    const std::string events =
        eventsOf("<!DOCTYPE a [<!ENTITY e SYSTEM 'large'><!ENTITY f SYSTEM 'large'>]>"
                 "<a>&e;<b/>&f;</a>");
    EXPECT_EQ(error, nullptr);
    EXPECT_EQ(events.size(),
              std::string_view("start a\ntext \"\"\nstart b\nend b\nend a\n").size() +
                  xmlLimits::externalEntitySize / 2 + 1);
    EXPECT_THAT(log.back(), HasSubstr("\"large\" was not read: too large"));
}

TEST_F(XMLExternalEntities, ThatAreNoTextAreRefused) {
    write("binary", std::string("a\0b", 3));
    write("broken", "<?xml encoding='UTF-16'?>x");
    write("unknown", "<?xml encoding='x-none'?>x");
    std::string tag = "<b ";
    for (int i = 0; i < 10'000; ++i) {
        tag.append("b").append(std::to_string(i)).append("='' ");
    }
    write("overlong", tag + "/>");
    expectRefused("binary", "not a text");
    expectRefused("broken", "Document labelled UTF-16 but has UTF-8 content");
    expectRefused("unknown", "Unsupported encoding x-none");
    expectRefused("overlong", "a tag with too many attributes");
}

TEST_F(XMLExternalEntities, ThatAreNotWellFormedAreAnErrorWhereTheyAreReferredTo) {
    write("e.xml", "\n\n\n<b></c>");
    eventsOf("<!DOCTYPE a [<!ENTITY e SYSTEM 'e.xml'>]>\n<a>\n  &e;</a>");
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->code(), 76);
    EXPECT_EQ(error->integer(NSXMLParserErrorLineNumber), 3);
    EXPECT_EQ(error->integer(NSXMLParserErrorColumn), 6);
}

TEST_F(XMLExternalEntities, InAttributeValuesAreAnError) {
    write("e.txt", "text");
    for (const bool resolves : {false, true}) {
        for (const char *content : {"<a b='&e;'/>", "<a>&e;<b c='&e;'/></a>", "<a b='&f;'/>"}) {
            eventsOf("<!DOCTYPE a [<!ENTITY e SYSTEM 'e.txt'><!ENTITY f '&e;'>]>" +
                         std::string(content),
                     resolves);
            ASSERT_NE(error, nullptr) << content;
            EXPECT_EQ(error->code(), 29) << content;
        }
    }
}

TEST_F(XMLExternalEntities, OfParametersAndSubsetsAreRead) {
    write("a.dtd", "<?xml version='1.0' encoding='UTF-8'?>\n<!ENTITY e 'outer'>"
                   "<!ATTLIST a b CDATA 'default'>\n<!ENTITY % q SYSTEM 'q.dtd'> %q;");
    write("q.dtd", "<!ENTITY g 'nested'>");
    write("p.dtd", "<![INCLUDE[<!ENTITY f 'inner'>]]><![IGNORE[<!ENTITY f 'wrong'>]]>");
    EXPECT_EQ(eventsOf("<!DOCTYPE a SYSTEM 'a.dtd' [<!ENTITY % p SYSTEM 'p.dtd'>%p;]>"
                       "<a>&e;|&f;|&g;</a>"),
              "start a b=\"default\"\ntext \"outer|inner|nested\"\nend a\n");
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(XMLExternalEntities, AreRelativeToTheFileThatDeclaresThem) {
    write("dtd/a.dtd", "<!ENTITY e SYSTEM 'e.txt'><!ENTITY % p '<!ENTITY f SYSTEM \"e.txt\">'>%p;"
                       "<!ENTITY % q SYSTEM 'deep/q.dtd'>%q;");
    write("dtd/e.txt", "beside the DTD");
    write("dtd/deep/q.dtd", "<!ENTITY g SYSTEM '../../e.txt'>");
    write("e.txt", "beside the document");
    EXPECT_EQ(eventsOf("<!DOCTYPE a SYSTEM 'dtd/a.dtd'><a>&e;|&f;|&g;</a>"),
              "start a\ntext \"beside the DTD|beside the DTD|beside the document\"\nend a\n");
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(XMLExternalEntities, OfParametersThatAreRefusedAreNoError) {
    EXPECT_EQ(eventsOf("<!DOCTYPE a SYSTEM 'http://localhost/a.dtd' ["
                       "<!ENTITY % p SYSTEM '../p.dtd'>%p;<!ENTITY % q SYSTEM 'no uri'>%q;"
                       "<!ENTITY e 'text'>]><a b='&g;'>&e;&f;</a>"),
              "start a b=\"\"\ntext \"text\"\nend a\n");
    EXPECT_EQ(error, nullptr);
    EXPECT_THAT(log, ElementsAre(HasSubstr("\"../p.dtd\""), HasSubstr("\"no uri\""),
                                 HasSubstr("\"http://localhost/a.dtd\"")));
}

TEST_F(XMLExternalEntities, AreLimitedLikeOthers) {
    write("e.txt", std::string(300'000, 'x'));
    write("p.dtd", std::string(xmlLimits::declarationsSize, ' '));
    std::string references;
    for (int i = 0; i < 100; ++i) {
        references += "&e;";
    }
    eventsOf("<!DOCTYPE a [<!ENTITY e SYSTEM 'e.txt'>]><a>" + references + "</a>");
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->code(), 89);
    eventsOf("<!DOCTYPE a SYSTEM 'p.dtd'><a/>");
    EXPECT_EQ(error, nullptr);
    eventsOf("<!DOCTYPE a SYSTEM 'p.dtd' [<!ENTITY % p SYSTEM 'p.dtd'>%p;]><a/>");
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->code(), 1);
}

TEST_F(XMLExternalEntities, ThatReferToThemselvesAreAnError) {
    write("e.xml", "<b>&e;</b>");
    write("p.dtd", "%p;");
    eventsOf("<!DOCTYPE a [<!ENTITY e SYSTEM 'e.xml'>]><a>&e;</a>");
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->code(), 89);
    eventsOf("<!DOCTYPE a [<!ENTITY % p SYSTEM 'p.dtd'>%p;]><a/>");
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->code(), 89);
}

TEST_F(XMLExternalEntities, OfADocumentKnownByItsDescriptorAreRefused) {
    write("e.txt", "text");
    write("document.xml", "<!DOCTYPE a [<!ENTITY e SYSTEM 'e.txt'>]><a>&e;</a>");
    const int descriptor = ::open((home() / "document.xml").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(descriptor, 0);
    for (const char *folder : {"/dev/fd/", "/proc/self/fd/"}) {
        log.clear();
        EXPECT_EQ(eventsAt(folder + std::to_string(descriptor)), "start a\nend a\n");
        EXPECT_EQ(error, nullptr);
        EXPECT_THAT(log, ElementsAre("External entity \"e.txt\" was not read: "
                                     "the document is in no folder"));
        ASSERT_EQ(::lseek(descriptor, 0, SEEK_SET), 0);
    }
    ::close(descriptor);
}

TEST_F(XMLExternalEntities, OfALinkedDocumentAreBesideTheDocumentItself) {
    write("e.txt", "text");
    write("document.xml", "<!DOCTYPE a [<!ENTITY e SYSTEM 'e.txt'>]><a>&e;</a>");
    testing::writeFile(outside.path() / "e.txt", "wrong");
    fs::create_symlink(home() / "document.xml", outside.path() / "link.xml");
    EXPECT_EQ(eventsAt(outside.file("link.xml")), "start a\ntext \"text\"\nend a\n");
}

TEST_F(XMLExternalEntities, OfADocumentInTheWorkingFolderAreFound) {
    write("e.txt", "text");
    write("document.xml", "<!DOCTYPE a [<!ENTITY e SYSTEM 'e.txt'>]><a>&e;</a>");
    const fs::path before = fs::current_path();
    fs::current_path(home());
    EXPECT_EQ(eventsAt("document.xml"), "start a\ntext \"text\"\nend a\n");
    fs::current_path(before);
}

TEST_F(XMLExternalEntities, OfADocumentThatWasReplacedMeanwhileAreRefused) {
    write("e.txt", "text");
    write("document.xml", "<!DOCTYPE a [<!ENTITY e SYSTEM 'e.txt'>]><a>&e;</a>");
    RecordingXMLDelegate delegate;
    delegate.onEvent = [this](XMLParser &, const std::string &event) {
        if (event == "start a") {
            fs::rename(home() / "document.xml", home() / "moved.xml");
            write("document.xml", "<other/>");
        }
    };
    const auto parser =
        XMLParser::initWithContentsOfURL(URL::fileURLWithPath((home() / "document.xml").string()));
    parser->setDelegate(&delegate);
    parser->setShouldResolveExternalEntities(true);
    EXPECT_TRUE(parser->parse());
    EXPECT_EQ(delegate.text(), "start a\nend a\n");
    EXPECT_EQ(log.size(), 1U);
}

TEST_F(XMLExternalEntities, ADocumentThatAsksForTheWorldIsReadWithoutIt) {
    const std::string document = "<!DOCTYPE gpx [\n"
                                 "<!ENTITY % file SYSTEM \"php://filter/resource=/etc/passwd\">\n"
                                 "<!ENTITY % dtd SYSTEM \"http://localhost:1/evil.xml\">\n%dtd;\n"
                                 "]>\n<gpx><name>&send;</name></gpx>";
    EXPECT_EQ(eventsOf(document), "start gpx\nstart name\nend name\nend gpx\n");
    EXPECT_EQ(error, nullptr);
    EXPECT_THAT(log, ElementsAre("External entity \"http://localhost:1/evil.xml\" was not read: "
                                 "only files are read"));
}

} // namespace
} // namespace pelluvia
