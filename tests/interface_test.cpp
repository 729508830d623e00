// The loader of interface files.

#include "support/AppKitFixture.h"

namespace {

TEST_F(AppKit, ALoadedFileIsConnectedAndItsOwnerIsDestroyedBeforeItsControls) {
    Names obituary;
    madeObituary = &obituary;
    auto result = load(R"(<interface class="Recorder">
        <window name="main" title="M"><column>
            <textField outlet="name" text="kept" delegate="yes"/>
            <button outlet="press" title="Press" action="press:" key="return"/>
            <tableView outlet="table"><column id="a"/><column id="b" width="7" hidden="yes"/></tableView>
            <popUp name="menu"><item title="x"/><item title="y" tag="-3"/></popUp>
            <label for="name" text="Name:"/>
        </column></window></interface>)",
                       nullptr);
    madeObituary = nullptr;
    auto loaded = std::move(*result);
    auto* owner = static_cast<Recorder*>(loaded->owner());
    EXPECT_EQ(NSApp().delegate(), owner);
    EXPECT_EQ(NSApp().mainWindow(), loaded->find("main"));
    EXPECT_EQ(loaded->findWiredTo("press:"), owner->press);
    owner->press->performClick();
    EXPECT_EQ(owner->told, Names{"pressed"});
    EXPECT_EQ(owner->press->keyEquivalent(), "\r");
    EXPECT_TRUE(owner->table->tableColumns().at(1).hidden);
    EXPECT_EQ(dynamic_cast<NSPopUpButton*>(loaded->find("menu"))->items().at(1).tag, -3);
    loaded.reset();
    EXPECT_EQ(obituary, Names{"kept"});
    EXPECT_EQ(NSApp().delegate(), nullptr);
    EXPECT_EQ(NSApp().mainWindow(), nullptr);
}

TEST_F(AppKit, AFaultyFileIsRefusedWithItsLineAndLeavesNoOutletSet) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"<knob/>", "<knob> does not belong in <column>"},
        {"<cell title='x'/>", "<cell> does not belong in <column>"},
        {"<button action='press:' colour='red'/>", "<button> has no attribute \"colour\""},
        {"<button title='x'/>", "<button> needs the attribute \"action\""},
        {"<button action='push:'/>", "the class \"Recorder\" has no operation \"push:\""},
        {"<button action='press:' enabled='1'/>", "enabled=\"1\" of <button> must be \"yes\" or \"no\""},
        {"<textField outlet='nam'/>", "the class \"Recorder\" has no outlet \"nam\""},
        {"<checkBox outlet='table'/>",
         "the outlet \"table\" of the class \"Recorder\" is of another kind than <checkBox>"},
        {"<textField name='first'/>", "the name \"first\" is taken already"},
        {"<textField outlet='name' name='other'/>", "the outlet \"name\" has a name besides"},
        {"<label text='x' for='nobody'/>", "the element refers to \"nobody\", which is not in the file"},
        {"<popUp><item title='x' tag='2147483648'/></popUp>",
         "tag=\"2147483648\" of <item> must be a whole number of 32 bits"},
        {"<matrix rows='2' columns='1'><cell title='x'/></matrix>",
         "a matrix of 2 x 1 does not have 1 cells"},
        {"<tableView><column id='a'/><column id='a'/></tableView>", "the table has a second column \"a\""},
        {"<tabView><tab label='x'/></tabView>", "<tab> holds 0 layout elements; it needs one"},
        {"<label text='x' text='y'/>", "<label> has the attribute \"text\" twice"},
        {"words", "<column> holds text; texts are attributes"},
        {"<row>", "the XML is not well formed"},
    };
    for (const auto& [element, fault] : cases) {
        Recorder owner;
        const std::string xml = "<interface class='Recorder'>\n<window><column>\n<textField name='first'/>"
                                "<button outlet='press' action='press:'/>\n" +
                                element + "\n</column></window></interface>\n";
        const std::string line = fault.find("well formed") == std::string::npos ? ":4: " : ":5: ";
        const std::string error = load(xml, &owner).status().text();
        EXPECT_NE(error.find("file.xml" + line + fault), std::string::npos) << element << error;
        EXPECT_EQ(owner.press, nullptr) << element;
        EXPECT_EQ(NSApp().delegate(), nullptr);
    }
    EXPECT_FALSE(platform::Interface::load("/missing.xml", "Recorder").isOk());
}

TEST_F(AppKit, AFileThatDoesNotFitItsClassIsRefusedBeforeAnyNotification) {
    struct Other : Recorder {};

    platform::registerClass(platform::describeClass<Other>("Other").take());
    const std::string controls = "<textField outlet='name'/><button outlet='press' action='press:'/>";
    const std::string table = "<tableView outlet='table'><column id='a'/></tableView>";
    const std::vector<std::array<std::string, 3>> cases = {
        {"Nobody", controls + table, ":2: there is no class \"Nobody\""},
        {"Other", "", ":2: the file is for the class \"Other\", not for \"Recorder\""},
        {"Recorder", controls, ":2: outlets of the class \"Recorder\" are missing: \"table\""},
        // A name is not an outlet.
        {"Recorder", "<textField name='name'/><button name='press' action='press:'/>" + table,
         ":2: outlets of the class \"Recorder\" are missing: \"name\", \"press\""},
    };
    for (const auto& [name, elements, fault] : cases) {
        Recorder owner;
        const auto loaded = load("<?xml version='1.0'?>\n<interface class='" + name + "'>\n<window><column>" +
                                     elements + "</column></window></interface>",
                                 &owner);
        EXPECT_EQ(loaded.status().text(), (host.root() / "file.xml").string() + fault);
        EXPECT_EQ(owner.table, nullptr) << fault;
        EXPECT_EQ(host.loadedInterface, nullptr) << fault;
        EXPECT_EQ(NSApp().mainWindow(), nullptr) << fault;
    }
}

} // namespace
