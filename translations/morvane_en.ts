<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US">
<context>
    <name>AppState</name>
    <message numerus="yes">
        <source>%n fonts couldn&apos;t be activated</source>
        <translation>
            <numerusform>%n font couldn&apos;t be activated</numerusform>
            <numerusform>%n fonts couldn&apos;t be activated</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Turned off the fonts in “%1”. %n of its fonts couldn&apos;t be activated.</source>
        <translation>
            <numerusform>Turned off the fonts in “%1”. %n of its fonts couldn&apos;t be activated.</numerusform>
            <numerusform>Turned off the fonts in “%1”. %n of its fonts couldn&apos;t be activated.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>FontListModel</name>
    <message numerus="yes">
        <source>%n styles</source>
        <translation>
            <numerusform>%n style</numerusform>
            <numerusform>%n styles</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>LibraryList</name>
    <message numerus="yes">
        <source>%Ln fonts</source>
        <translation>
            <numerusform>%Ln font</numerusform>
            <numerusform>%Ln fonts</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message numerus="yes">
        <source>%n items can&apos;t be opened: Morvane opens font files (.ttf, .otf, .ttc, .otc, .dfont) and folders.</source>
        <translation>
            <numerusform>%n item can&apos;t be opened: Morvane opens font files (.ttf, .otf, .ttc, .otc, .dfont) and folders.</numerusform>
            <numerusform>%n items can&apos;t be opened: Morvane opens font files (.ttf, .otf, .ttc, .otc, .dfont) and folders.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>SidebarModel</name>
    <message numerus="yes">
        <source>%n font(s)</source>
        <translation>
            <numerusform>%n font</numerusform>
            <numerusform>%n fonts</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n item(s)</source>
        <translation>
            <numerusform>%n item</numerusform>
            <numerusform>%n items</numerusform>
        </translation>
    </message>
</context>
</TS>
