// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/XMLParser.h>

#include <Pelluvia/system/Log.h>

#include <cstdarg>
#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/xmlerror.h>
#include <tests/support/RecordingXMLDelegate.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/support/XMLSources.h>
#include <thread>

/// \file
/// A host may use the XML library for itself: its settings for the process are neither changed nor
/// used.

namespace pelluvia {
namespace {

using testing::eventsOf;
using testing::parserOf;

int calls = 0; // of what the host has set

void countStructured(void * /*context*/, xmlErrorPtr /*error*/) {
    ++calls;
}

void countGeneric(void * /*context*/, const char * /*format*/, ...) {
    ++calls;
}

xmlParserInputPtr countLoader(const char * /*url*/, const char * /*id*/,
                              xmlParserCtxtPtr /*context*/) {
    ++calls;
    return nullptr;
}

/// A host with settings of its own, which are all unlike what the parser needs.
class XMLHost : public ::testing::Test {
  protected:
    XMLHost() : loader_(xmlGetExternalEntityLoader()) {
        calls = 0;
        xmlSetExternalEntityLoader(countLoader);
        xmlSetStructuredErrorFunc(nullptr, countStructured);
        xmlSetGenericErrorFunc(nullptr, countGeneric);
        xmlSubstituteEntitiesDefault(1);
        xmlLoadExtDtdDefaultValue = 1;
        xmlDoValidityCheckingDefaultValue = 1;
        xmlPedanticParserDefault(1);
        xmlKeepBlanksDefault(0);
        setLogSink([](std::string_view) {});
    }
    ~XMLHost() override {
        setLogSink({});
        xmlKeepBlanksDefault(1);
        xmlPedanticParserDefault(0);
        xmlDoValidityCheckingDefaultValue = 0;
        xmlLoadExtDtdDefaultValue = 0;
        xmlSubstituteEntitiesDefault(0);
        xmlSetGenericErrorFunc(nullptr, nullptr);
        xmlSetStructuredErrorFunc(nullptr, nullptr);
        xmlSetExternalEntityLoader(loader_);
    }

  private:
    xmlExternalEntityLoader loader_;
};

TEST_F(XMLHost, IsNotAskedForFilesNorToldOfErrors) {
    const testing::TemporaryFolder folder;
    folder.write("e.txt", "text");
    const char *const documents[] = {
        "<a> <b/> </a>",
        "<a><b></a>",
        "",
        "<?xml version='1.0' encoding='UTF-16'?><a/>",
        "<?xml version='1.0' encoding='Shift_JIS'?><a>\x93</a>",
        ("<!DOCTYPE x [<!ELEMENT a EMPTY><!ENTITY lt 'wrong'><!ENTITY e SYSTEM 'e.txt'>"
         "<!ENTITY % p SYSTEM 'http://localhost:1/p'>%p;%q;]><a>&e;&f;&lt;</a>"),
        "<!DOCTYPE a SYSTEM 'http://localhost:1/a.dtd'><a xmlns:p='relative'><q:b/></a>",
        "<!DOCTYPE a SYSTEM 'e.txt'><a/>",
        "<?oasis-xml-catalog catalog='http://localhost:1/catalog'?><a/>",
    };
    for (const char *document : documents) {
        for (const bool resolves : {false, true}) {
            const auto parser = XMLParser::initWithContentsOfURL(
                URL::fileURLWithPath(folder.write("document.xml", document)));
            parser->setShouldResolveExternalEntities(resolves);
            parser->parse();
            EXPECT_EQ(calls, 0) << document;
        }
    }
    EXPECT_EQ(xmlGetExternalEntityLoader(), countLoader);
    EXPECT_EQ(xmlStructuredError, countStructured);
    EXPECT_EQ(xmlGenericError, countGeneric);
}

TEST_F(XMLHost, HasNoInfluenceOnWhatIsReported) {
    EXPECT_EQ(eventsOf("<!DOCTYPE a [<!ELEMENT a EMPTY>]><a> <b/> </a>"),
              "start a\ntext \" \"\nstart b\nend b\ntext \" \"\nend a\n");
    EXPECT_EQ(eventsOf("<!DOCTYPE a SYSTEM 'a.dtd'><a xml:lang='!'>&e;</a>"),
              "start a xml:lang=\"!\"\nend a\n");
}

TEST(XMLThreads, ParsersOnThreadsDoNotDisturbEachOther) {
    std::string document = "<a>";
    std::string expected = "start a\n";
    for (int i = 0; i < 2000; ++i) {
        document += "<b c='&lt;'>\xC3\xA4</b>";
        expected += "start b c=\"<\"\ntext \"\xC3\xA4\"\nend b\n";
    }
    std::vector<std::string> results(4);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < results.size(); ++i) {
        threads.emplace_back(
            [&, i] { results[i] = eventsOf(document + (i % 2 == 0 ? "</a>" : "</z>")); });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    for (std::size_t i = 0; i < results.size(); ++i) {
        EXPECT_EQ(results[i], expected + (i % 2 == 0 ? "end a\n" : "error 76\n"));
    }
}

} // namespace
} // namespace pelluvia
