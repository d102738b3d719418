#include "inspect/redaction/named_values.h"

#include "tests/inspect/redaction/redactor_fixture.h"

#include <gtest/gtest.h>

namespace rcp::inspect {
namespace {

TEST(NamedValues, TakesValuesOfSecretNames) {
    EXPECT_EQ(redacted("db.password=hunter2"), "db.password=*");
    EXPECT_EQ(redacted("db.password = my long phrase \n"), "db.password = * \n");
    EXPECT_EQ(redacted("db.password: hunter2"), "db.password: *");
    EXPECT_EQ(redacted("db.password hunter2"), "db.password *");
    EXPECT_EQ(redacted("#old.password=hunter2"), "#old.password=*");
    EXPECT_EQ(redacted("/etc/a.properties:12:api.key=abc"), "/etc/a.properties:12:api.key=*");
    EXPECT_EQ(redacted("db.password=one\\\n    two\nnext=3"), "db.password=*\nnext=3");
    EXPECT_EQ(redacted("-Dclient.secret=a b"), "-Dclient.secret=*");
    EXPECT_EQ(redacted("vmarg.pw=-Dsize=a b    (a:1, used)"), "vmarg.pw=-Dsize=*    (a:1, used)");
    EXPECT_EQ(redacted("  19  -Dkey=a b    (rcplauncher.properties:3 vmarg.a)"),
              "  19  -Dkey=*    (rcplauncher.properties:3 vmarg.a)");
    EXPECT_EQ(redacted("login failed: password=abc def"), "login failed: password=*");
    EXPECT_EQ(redacted(R"({"token": "abc", "size": 1})"), R"({"token": "*", "size": 1})");
    EXPECT_EQ(redacted("<password>abc</password><size>1</size>"),
              "<password>*</password><size>1</size>");
    EXPECT_EQ(redacted("Cookie: a=b; c=d"), "Cookie: *");
    EXPECT_EQ(redacted("sent Authorization: Basic YWJj"), "sent Authorization: *");
    EXPECT_EQ(redacted("with Bearer abcdefgh1234 refused"), "with Bearer * refused");
}

TEST(NamedValues, TakesQuotedNamesAndValues) {
    EXPECT_EQ(redacted(R"(-Djs={"pass":"one","key":"two","size":3})"),
              R"(-Djs={"pass":"*","key":"*","size":3})");
    EXPECT_EQ(redacted(R"(q.password="one\"two" behind)"), R"(q.password="*" behind)");
    EXPECT_EQ(redacted("<password type=\"x\">one</password>"), "<password type=\"x\">*</password>");
    EXPECT_EQ(redacted("Authorization: Digest username=\"one\", response=\"two\"\nnext"),
              "Authorization: *\nnext");
}

TEST(NamedValues, TakesWhatStandsBehindASecretOption) {
    EXPECT_EQ(redacted("main arguments=\"/opt/x, -password, hunter two, -clean, \""),
              "main arguments=\"/opt/x, -password, *, -clean, \"");
    EXPECT_EQ(redacted("-password\nhunter two\n-clean\n"), "-password\n*\n-clean\n");
    EXPECT_EQ(redacted("java -Da=b --token abc -jar x"), "java -Da=b --token * -jar x");
    EXPECT_EQ(redacted("-Da=b -Dpw.token=x -Dsize=1"), "-Da=b -Dpw.token=* -Dsize=1");
    EXPECT_EQ(redacted("-password -clean"), "-password -clean");
}

TEST(NamedValues, TakesAValueThatBeginsAsAnOptionDoes) {
    EXPECT_EQ(redacted("-password -x1y2"), "-password *");
    EXPECT_EQ(redacted("\"/opt/x, -password, -x1y2, -clean, \""),
              "\"/opt/x, -password, *, -clean, \"");
    EXPECT_EQ(redacted("-password -hunter"), "-password *");
    EXPECT_EQ(redacted("\"/opt/x, -password, -hunter_two, -clean, \""),
              "\"/opt/x, -password, *, -clean, \"");
    EXPECT_EQ(redacted("-token -password -hunter"), "-token -password *");
    EXPECT_EQ(redactedDocument(R"({"arguments":["-password","-hunter","-clean"]})"),
              R"({"arguments":["-password","*","-clean"]})");
    for (const char* line :
         {"-token -Xmx128m", "-token -Da1=b", "-token --add-modules=ALL", "-token -pb4l",
          "-token -rcp_old_pid", "-token -consoleLog", "-token -server", "-token -noExit",
          "-token -javaagent:/a.jar", "-token -clean -password", "-token --clean"}) {
        EXPECT_EQ(redacted(line), line);
    }
}

TEST(NamedValues, TakesTheNextArgumentOfANumberedList) {
    EXPECT_EQ(redacted("   9  -token    (argument 3)\n  10  java    (argument 4)\n  11  java\n"),
              "   9  -token    (argument 3)\n  10  *    (argument 4)\n  11  java\n");
    EXPECT_EQ(redacted("   4  -token\n        passed on (argument 3)\n   5  java\n        java\n"),
              "   4  -token\n        passed on (argument 3)\n   5  *\n        java\n");
    EXPECT_EQ(redacted("arg1=-token    (a:2, used)\narg2=java    (a:3, used)\n"),
              "arg1=-token    (a:2, used)\narg2=*    (a:3, used)\n");
    EXPECT_EQ(redacted("/a/b:12:arg1=-token\n/a/b:13:arg2=java\n"),
              "/a/b:12:arg1=-token\n/a/b:13:arg2=*\n");
    EXPECT_EQ(redacted("read the -token\njava is next\n"), "read the -token\njava is next\n");
}

TEST(NamedValues, TakesValuesThatAFindingTells) {
    EXPECT_EQ(redacted(R"(x: "db.password" is "abc" in the user's copy, "def" in its master)"),
              R"(x: "db.password" is "*" in the user's copy, "*" in its master)");
    EXPECT_EQ(redacted(R"("db.password" is missing in the user's copy; its master has "abc" (a))"),
              R"("db.password" is missing in the user's copy; its master has "*" (a))");
    EXPECT_EQ(redacted(R"(the key is "db.password", the value "=abc")"),
              R"(the key is "db.password", the value "*")");
    EXPECT_EQ(redacted(R"(nothing looks at "db.password")"), R"(nothing looks at "db.password")");
}

TEST(NamedValues, TakesUsersBehindTheirOption) {
    EXPECT_EQ(redacted("# curl -u joe:pw9 https://host"), "# curl -u * https://host");
    EXPECT_EQ(redacted("curl --user=joe:pw9 https://host"), "curl --user=* https://host");
    EXPECT_EQ(redacted("-u\njoe:pw9\n"), "-u\n*\n");
    EXPECT_EQ(redacted("docker run -u 1000:1000 x"), "docker run -u 1000:1000 x");
    EXPECT_EQ(redacted("sort -u file"), "sort -u file");
}

TEST(NamedValues, TakesTheValueOfTheKeyInTheRecordBefore) {
    EXPECT_EQ(redacted("ZYPRA0023I:   attrib = \"db.password\"\nZYPRA0024I:   value  = \"a\"b\"\n"),
              "ZYPRA0023I:   attrib = \"db.password\"\nZYPRA0024I:   value  = \"*\"\n");
    EXPECT_EQ(redacted("ZYPRA0126I:   key = \"api.key\"\nZYPRA0127I:   value  = \"ab\"\n"),
              "ZYPRA0126I:   key = \"api.key\"\nZYPRA0127I:   value  = \"*\"\n");
    EXPECT_EQ(redacted("ZYPRA0126I:   key = \"size\"\nZYPRA0127I:   value  = \"ab\"\n"),
              "ZYPRA0126I:   key = \"size\"\nZYPRA0127I:   value  = \"ab\"\n");
}

TEST(NamedValues, TakesDefaultsOfPlaceholders) {
    EXPECT_EQ(redacted("-Dx=${env.DB_TOKEN,fallback}/y"), "-Dx=${env.DB_TOKEN,*}/y");
    EXPECT_EQ(redacted("-Dx=${env.SIZE,12}"), "-Dx=${env.SIZE,12}");
    EXPECT_EQ(redacted("-Dpassword=${env.SIZE,12}"), "-Dpassword=${env.SIZE,*}");
    EXPECT_EQ(redacted("db.password=${env.DB_PASSWORD}"), "db.password=${env.DB_PASSWORD}");
}

TEST(NamedValues, TakesValuesOfPlaceholders) {
    EXPECT_EQ(redacted("${env.DB_PW} = a1!"), "${env.DB_PW} = *");
    EXPECT_EQ(redacted("${env.DB_PW,x} = x: DB_PW is not set, its default is used"),
              "${env.DB_PW,*} = *: DB_PW is not set, its default is used");
    EXPECT_EQ(redacted("${env.SIZE} = 12"), "${env.SIZE} = 12");
    EXPECT_EQ(redacted("Modified -Dx=${env.DB_PW} => -Dx=a1!"), "Modified -Dx=${env.DB_PW} => *");
}

TEST(NamedValues, LeavesWhatStandsBehindAnElement) {
    for (const char* line : {"</password>    (a:1)\nnext", "<password/> next",
                             "<a name=\"password\"/> to -> there -> here",
                             "<password></password> -> there", "</password> -> there -> here"}) {
        EXPECT_EQ(redacted(line), line);
    }
    EXPECT_EQ(redacted("<password>abc</password> next"), "<password>*</password> next");
}

TEST(NamedValues, TakesAValueBesideItsName) {
    EXPECT_EQ(redacted(R"(<property name="db.password" value="ab c"/><a name="size" value="3"/>)"),
              R"(<property name="db.password" value="*"/><a name="size" value="3"/>)");
    EXPECT_EQ(redacted(R"({"name":"db.token","value":"abc"}, {"name":"size","value":"abd"})"),
              R"({"name":"db.token","value":"*"}, {"name":"size","value":"abd"})");
    EXPECT_EQ(redacted(R"(<a name="db.password">ab c</a><a name="size">3</a>)"),
              R"(<a name="db.password">*</a><a name="size">3</a>)");
    EXPECT_EQ(redacted(R"(<entry key="db.password">ab c</entry><entry key="size">3</entry>)"),
              R"(<entry key="*">*</entry><entry key="*">3</entry>)")
        << "a key is a secret itself";
    EXPECT_EQ(redacted("my name: token, value: 3\nname=token\nvalue=3"),
              "my name: token, value: *\nname=token\nvalue=3");
}

TEST(NamedValues, LeavesTheOriginBehindAField) {
    EXPECT_EQ(redacted("4  -Dx=Cookie: a=b; c=d    (a:1 vmarg.x)"),
              "4  -Dx=Cookie: *    (a:1 vmarg.x)");
}

TEST(NamedValues, LeavesItsOwnSentencesAboutASecretName) {
    for (const char* line : {"-Da.password is a key", "a.password is a key", "API_TOKEN is not set",
                             "API_TOKEN is removed", "-token is not set\n"}) {
        EXPECT_EQ(redacted(line), line);
    }
    EXPECT_EQ(redacted("-token is"), "-token *");
    EXPECT_EQ(redacted("a.password is a keyring"), "a.password *");
}

TEST(NamedValues, LeavesAChangeOfAVariableReadable) {
    Redactor one = redactor();
    one.learn("TOKEN=hunter2");
    const std::string digest = "<redacted:" + saltedDigest(kSalt, "hunter2") + ">";
    EXPECT_EQ(one.redact("$TOKEN=(not set) becomes hunter2    (a:1)"),
              "$TOKEN=(not set) becomes " + digest + "    (a:1)");
    EXPECT_EQ(redacted("$TOKEN=(not set) becomes ab    (a:1)"), "$TOKEN=*    (a:1)");
    EXPECT_EQ(one.redact("TOKEN: (not set) -> hunter2\nTOKEN: hunter2 -> (not set)"),
              "TOKEN: (not set) -> " + digest + "\nTOKEN: " + digest + " -> (not set)");
}

}  // namespace
}  // namespace rcp::inspect
