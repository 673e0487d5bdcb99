#include <gtest/gtest.h>

#include "client/Request.h"

namespace corvana::client {
namespace {

using Words = std::vector<std::string>;

TEST(Request, BecomesOptions) {
  const auto words = argumentsOf(R"({"reference": "card", "max-retries": 2, "keep": true,
                                     "spoken-hints": false, "theme": null})",
                                 "capture");
  ASSERT_TRUE(words) << words.error();
  EXPECT_EQ(*words, (Words{"capture", "--keep", "--max-retries=2", "--reference=card"}));
}

TEST(Request, CannotBecomeAnotherOption) {
  const auto words = argumentsOf(R"({"text": "--keep", "folder": "--help"})", "verify", {"folder"});
  ASSERT_TRUE(words) << words.error();
  EXPECT_EQ(*words, (Words{"verify", "--text=--keep", "--", "--help"}));
}

TEST(Request, KeepsTheOrderOfWhatStandsAlone) {
  const auto words =
      argumentsOf(R"({"second": "a.png", "first": "b.png"})", "compare", {"first", "second"});
  ASSERT_TRUE(words) << words.error();
  EXPECT_EQ(*words, (Words{"compare", "--", "b.png", "a.png"}));
}

TEST(Request, IsRefusedInOneSentence) {
  struct Case {
    const char* request;
    const char* sentence;
  };
  for (const Case& wrong : {
           Case{"", "The request is no JSON object."},
           Case{"[1]", "The request is no JSON object."},
           Case{R"({"a": )", "The request is no JSON object."},
           Case{R"({"-key": "x"})", R"(The request has a key that is no option's name: "-key".)"},
           Case{R"({"a=b": "x"})", R"(The request has a key that is no option's name: "a=b".)"},
           Case{R"({"": "x"})", R"(The request has a key that is no option's name: "".)"},
           Case{R"({"text": ["x"]})", R"(The request has a list or an object as "text".)"},
           Case{R"({"text": "a\u0000b"})", R"(The request has a zero byte in "text".)"},
           Case{"{}", R"(The request lacks "folder".)"},
           Case{R"({"folder": 7})", R"(The request lacks "folder".)"},
       }) {
    const auto words = argumentsOf(wrong.request, "verify", {"folder"});
    ASSERT_FALSE(words) << wrong.request;
    EXPECT_EQ(words.error(), wrong.sentence);
  }
}

}  // namespace
}  // namespace corvana::client
