// Bytes that nobody would write: every cut and change of a sample, great depth, what the fuzzer found.
#include <gtest/gtest.h>
#include <pthread.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "tests/support/SourceDir.h"
#include "tests/xml/XmlText.h"

using namespace zoka::test;

namespace {

const std::string kSample =
    "<?xml version=\"1.0\" encoding='utf-8' standalone=\"yes\"?>\r\n"
    "<!DOCTYPE P [<!ENTITY e \"x>\"> <!-- ' --> ]>\n"
    "<?go <now>?>\n"
    "<P name=\"a &amp; b\" date='&#x32;\n1' directory=''>\r\n"
    "\t<Doc> one &lt;two&gt;\r\n <b/>three]]</Doc>\n"
    "\t<!-- kept \xC3\xA9 -->\n"
    "\t<Level\n\t\tname='\xE2\x82\xAC'\n\t\t><![CDATA[ <raw> & ]] ]]>\n\tdesc\t</Level\n>\n"
    "</P>\n<!-- end -->";

// The sample itself, cut, and with each byte left out, doubled and changed into every other.
TEST(Hostile, EveryCutAndEveryChangeOfOneByte) {
    EXPECT_FALSE(XMLNode::parseBytes(kSample).isEmpty());
    ASSERT_EQ(checkXml(kSample), "");
    for (size_t at = 0; at < kSample.size(); ++at) {
        const std::string before = kSample.substr(0, at), behind = kSample.substr(at + 1);
        std::vector<std::string> all = {before, kSample.substr(at), before + behind,
                                        before + kSample[at] + kSample.substr(at)};
        for (int byte = 0; byte < 256; ++byte) {
            all.push_back(before + static_cast<char>(byte) + behind);
        }
        for (const std::string& bytes : all) {
            ASSERT_EQ(checkXml(bytes), "") << bytes;
        }
    }
}

// Seeds of the fuzzer and what it found, byte for byte.
TEST(Hostile, SeedsAndRegressionsOfTheFuzzer) {
    int files = 0;
    for (const char* folder : {"fuzz/seeds/xml", "fuzz/regressions/xml"}) {
        for (const auto& entry : std::filesystem::directory_iterator(zoka::test::sourceDir() / folder)) {
            std::ifstream in(entry.path(), std::ios::binary);
            const std::string bytes(std::istreambuf_iterator<char>(in), {});
            EXPECT_EQ(checkXml(bytes), "") << entry.path();
            ++files;
        }
    }
    EXPECT_GT(files, 10);
}

// Runs on a thread with a stack of 256 KB.
void onSmallStack(const std::function<void()>& work) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 256 * 1024), 0);
    pthread_t thread;
    const auto run = [](void* function) -> void* {
        (*static_cast<const std::function<void()>*>(function))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work)), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

TEST(Hostile, AMillionNestedElements) {
    constexpr size_t depth = 1000000;
    onSmallStack([] {
        std::string text;
        text.reserve(depth * 7);
        for (size_t i = 0; i < depth; ++i) {
            text += "<a>";
        }
        for (size_t i = 0; i < depth; ++i) {
            text += "</a>";
        }
        XMLNode inner;
        {
            const XMLNode node = XMLNode::parseText(text.c_str(), "a");
            const std::string written = textOf(node);
            EXPECT_EQ(written.size(), depth * 7 - 3);  // the innermost is "<a/>"
            const std::string formatted = textOf(node, true);
            EXPECT_EQ(textOf(XMLNode::parseText(formatted.c_str(), "a")), written);
            inner = node;
            for (XMLNode child = node; !child.isEmpty(); child = child.firstChild()) {
                inner = child;
            }
        }
        size_t found = 0;
        for (XMLNode node = inner; !node.isEmpty(); node = node.getParent()) {
            ++found;
        }
        EXPECT_EQ(found, depth + 1);  // and the document
        EXPECT_TRUE(XMLNode::parseText(text.substr(0, depth * 3).c_str()).isEmpty());
    });
}

TEST(Hostile, GreatLengths) {
    const std::string large(5000000, 'x');
    const std::string texts[] = {
        "<a>" + large + "</a>",
        "<" + large + " b='1'/>",
        "<a " + large + "='1'/>",
        "<a b='" + large + "'/>",
        "<!--" + large + "--><a/>",
        "<a>" + std::string(1000000, '&') + "</a>",
        "<a>" + std::string(1000000, ']') + "&amp;</a>",
        "<a b='" + std::string(1000000, '\n') + "&amp;'/>",
        std::string(1000000, '<'),
        "<a" + std::string(1000000, ' ') + "/>",
        "<!DOCTYPE a " + std::string(1000000, '[') + "><a/>",
    };
    for (const std::string& text : texts) {
        EXPECT_EQ(checkXml(text), "") << text.substr(0, 20);
    }
    std::string line = "<a>";
    for (int i = 0; i < 300000; ++i) {
        line += "<b c='&lt;'>&amp;</b>";
    }
    EXPECT_EQ(verdict((line + "</b>").c_str()), "7 1:" + std::to_string(line.size() + 1));
}

}  // namespace
