#include "kxrxcommands.h"

#include <gtest/gtest.h>

namespace {

void first() {}
void second() {}

}  // namespace

TEST(CommandStack, CommandsAreFoundByGlobalOrLocalNameWithoutCase)
{
    KxEdCommandStack stack;
    ASSERT_EQ(stack.addCommand(L"G", L"MLINE", L"MLINIE", 0, first), Kald::eOk);
    ASSERT_EQ(stack.addCommand(L"G", L"-MLEDIT", L"-MLBEARB", KxCmdFlags::kUsePickSet, second), Kald::eOk);

    for (const wchar_t* typed : {L"MLINE", L"mline", L"MLinie", L"_mline", L"_MLINE"}) {
        const KxEdCommand* cmd = stack.lookupCmd(typed);
        ASSERT_NE(cmd, nullptr) << typed;
        EXPECT_EQ(cmd->handler, &first);
    }
    const KxEdCommand* edit = stack.lookupCmd(L"-mlbearb");
    ASSERT_NE(edit, nullptr);
    EXPECT_EQ(edit->globalName, L"-MLEDIT");
    EXPECT_EQ(edit->flags, KxCmdFlags::kUsePickSet);

    EXPECT_EQ(stack.lookupCmd(L"_MLINIE"), nullptr) << "\"_\" forces the global name";
    EXPECT_EQ(stack.lookupCmd(L"MLIN"), nullptr);
    EXPECT_EQ(stack.lookupCmd(L"_"), nullptr);
    EXPECT_EQ(stack.lookupCmd(L""), nullptr);
    EXPECT_EQ(stack.lookupCmd(nullptr), nullptr);
}

TEST(CommandStack, AddingRefusesDuplicatesAndIncompleteCommands)
{
    KxEdCommandStack stack;
    KxEdCommand* created = nullptr;
    ASSERT_EQ(stack.addCommand(L"G", L"ONE", nullptr, 2, first, nullptr, -1, nullptr, &created), Kald::eOk);
    ASSERT_NE(created, nullptr);
    EXPECT_EQ(created->localName, L"ONE") << "no local name means the global one";
    EXPECT_EQ(created->functionCode, -1);

    EXPECT_EQ(stack.addCommand(L"G", L"one", L"EINS", 0, second), Kald::eDuplicateKey);
    EXPECT_EQ(stack.addCommand(L"G", L"TWO", L"One", 0, second), Kald::eDuplicateKey);
    EXPECT_EQ(stack.addCommand(L"G", L"", L"X", 0, second), Kald::eInvalidInput);
    EXPECT_EQ(stack.addCommand(L"", L"X", L"X", 0, second), Kald::eInvalidInput);
    EXPECT_EQ(stack.addCommand(L"G", L"X", L"X", 0, nullptr), Kald::eInvalidInput);
    ASSERT_EQ(stack.groups().size(), 1u);
    EXPECT_EQ(stack.groups()[0].commands.size(), 1u);

    // The same name in another group is allowed; the latest group wins.
    ASSERT_EQ(stack.addCommand(L"H", L"ONE", L"ONE", 0, second), Kald::eOk);
    EXPECT_EQ(stack.lookupCmd(L"one")->handler, &second);
    ASSERT_EQ(stack.removeGroup(L"H"), Kald::eOk);
    EXPECT_EQ(stack.lookupCmd(L"one")->handler, &first);
}

TEST(CommandStack, GroupsListInOrderAndGoAsAWhole)
{
    KxEdCommandStack stack;
    stack.addCommand(L"HOST", L"LINE", L"LINE", 0, first);
    stack.addCommand(L"MOD", L"B", L"B", 0, first);
    stack.addCommand(L"MOD", L"A", L"A", 0, second);
    stack.addCommand(L"HOST", L"ERASE", L"ERASE", 0, second);

    ASSERT_EQ(stack.groups().size(), 2u);
    EXPECT_EQ(stack.groups()[0].name, L"HOST");
    EXPECT_EQ(stack.groups()[1].name, L"MOD");
    const KxEdCommandGroup* mod = stack.group(L"MOD");
    ASSERT_NE(mod, nullptr);
    ASSERT_EQ(mod->commands.size(), 2u);
    EXPECT_EQ(mod->commands[0].globalName, L"B");
    EXPECT_EQ(mod->commands[1].globalName, L"A");
    EXPECT_EQ(mod->commands[1].group, L"MOD");

    EXPECT_EQ(stack.removeGroup(L"MOD"), Kald::eOk);
    EXPECT_EQ(stack.removeGroup(L"MOD"), Kald::eKeyNotFound);
    EXPECT_EQ(stack.group(L"MOD"), nullptr);
    EXPECT_EQ(stack.lookupCmd(L"A"), nullptr);
    EXPECT_NE(stack.lookupCmd(L"ERASE"), nullptr);
}
