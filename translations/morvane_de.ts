<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>AppState</name>
    <message>
        <source>Morvane can&apos;t watch all your source folders (the system&apos;s limit of watched folders is reached): fonts added to them appear after Refresh Sources.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Activating fonts (%1 of %2)...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Deactivating fonts (%1 of %2)...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Restoring fonts (%1 of %2)...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Updating fonts (%1 of %2)...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>it couldn&apos;t be activated</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>it couldn&apos;t be deactivated</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Couldn&apos;t activate “%1”: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Couldn&apos;t deactivate “%1”: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 of %2 fonts couldn&apos;t be activated.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 of %2 fonts couldn&apos;t be deactivated.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>1 font couldn&apos;t be activated</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>%n fonts couldn&apos;t be activated</source>
        <translation type="unfinished">
            <numerusform></numerusform>
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>Morvane can&apos;t write to %1 (%2), so %3. They stay saved and are activated again when Morvane starts with the folder writable; to fix it, run “sudo chown -R $USER %1”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Morvane stopped waiting for a font that didn&apos;t answer. Fonts done before stay as they are; a file on a drive or network share that stopped responding is the usual cause.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stopped after activating %1 of %2 fonts; the others are as they were.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stopped after deactivating %1 of %2 fonts; the others are as they were.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Indexing fonts (%1 of %2)…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>New Collection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Couldn&apos;t use “%1” as the collection&apos;s icon: %2.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Couldn&apos;t use “%1” as the collection&apos;s icon: it is not an image Morvane can read.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This file system doesn&apos;t keep tags, so the licence status of “%1” can&apos;t be kept.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Couldn&apos;t set the licence status of “%1”: %2.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Restoring fonts…</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>AxisControls</name>
    <message>
        <source>Variable Font Axes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reset to Defaults</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Named instance</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Custom</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Instance</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CollectionMemberList</name>
    <message>
        <source>Members</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CollectionMemberModel</name>
    <message>
        <source>Folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Font</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Missing</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CollectionView</name>
    <message>
        <source>Collection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Collection name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Collection contents</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Drag fonts or folders here</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Empty collection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Deactivate All</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Activate All</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ColumnBrowserView</name>
    <message>
        <source>Font browser</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Path</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Columns</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>current</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CompareView</name>
    <message>
        <source>Compared faces</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to preview</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Compare</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Back</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Back to the font list</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Size</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Overlay</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Axes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Axes of %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Confirmations</name>
    <message>
        <source>Its 1 active font will be deactivated. </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Its %1 active fonts will be deactivated. </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Remove “%1” from Morvane?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The files stay where they are.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Remove Source</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Its 1 item stays where it is on disk; only the collection goes.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Its %1 items stay where they are on disk; only the collection goes.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete the collection “%1”?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete Collection</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ContextMenuText</name>
    <message>
        <source>ShowItems</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>License Status</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show in File Manager</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Deactivate All Fonts in Folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Activate All Fonts in Folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Deactivate Font</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Activate Font</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add to Collection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Remove Source</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Rename</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Set Custom Icon…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Remove Custom Icon</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete Collection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Remove from Collection</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ContextMenus</name>
    <message>
        <source>No file manager answered, so “%1” can&apos;t be shown. It is in %2.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Deactivate All Fonts in Source</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Activate All Fonts in Source</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Deactivate All Fonts in Collection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Activate All Fonts in Collection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Edit Filters…</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>EmptyStateView</name>
    <message>
        <source>No Font Sources</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add a folder containing your fonts to get started.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add Folder</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>FeatureToggles</name>
    <message>
        <source>OpenType Features</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Access All Alternates</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Small Capitals From Capitals</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Contextual Alternates</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Case-Sensitive Forms</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Glyph Composition</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Contextual Ligatures</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Discretionary Ligatures</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Denominators</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Fractions</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Historical Ligatures</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Kerning</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Standard Ligatures</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Lining Figures</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Localized Forms</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Mark Positioning</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Mark to Mark Positioning</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Numerators</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Oldstyle Figures</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ordinals</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Proportional Figures</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Required Ligatures</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stylistic Alternates</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Scientific Inferiors</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Small Capitals</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Subscript</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Superscript</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Swash</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tabular Figures</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Slashed Zero</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Initial Forms</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Medial Forms</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Terminal Forms</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Isolated Forms</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cursive Positioning</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stylistic Set %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Character Variant %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>FolderChooserText</name>
    <message>
        <source>Choose a Font Folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Select a folder containing fonts</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Choose an Icon</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Select a PNG or SVG image</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>FontFilterBar</name>
    <message>
        <source>Serif</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sans Serif</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Slab Serif</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Script</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Display</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Monospace</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Symbol</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unclassified</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Language</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Classification</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Weight</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Width</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Licence Status</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Source</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Italic</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Variable</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Monospaced</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Active</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Clear Filters</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Any Weight</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Thin to Light (100–300)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Regular to Medium (400–500)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Semibold to Black (600–900)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Any Width</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Condensed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Normal</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Expanded</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Search languages</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>FontListDelegate</name>
    <message>
        <source>Unable to preview</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>FontListModel</name>
    <message>
        <source>active</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>mixed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>inactive</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>1 style</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>%n styles</source>
        <translation type="unfinished">
            <numerusform></numerusform>
            <numerusform></numerusform>
        </translation>
    </message>
</context>
<context>
    <name>FontListTree</name>
    <message>
        <source>&amp;Compare</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>FontListView</name>
    <message>
        <source>Font list</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Filter fonts…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Filter fonts</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sample size</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Names</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show each font&apos;s name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Compare</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Compare two to twelve chosen fonts</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save as Smart Collection…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save as Smart Collection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Name:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Smart Collection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Fonts</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save Filters to “%1”</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>1 family</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 families</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>1 face</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 faces</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>FontNodeDelegate</name>
    <message>
        <source>Deactivate</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Activate All</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Activate</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>FontNodeListModel</name>
    <message>
        <source>Folder, </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Font, </source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>FontPreviewView</name>
    <message>
        <source>Family</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Style</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PostScript</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Format</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Size</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Glyphs</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Type</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Preview</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Larger Preview</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Smaller Preview</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Static Font</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Loading font…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Font status</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Font family</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Preview text</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Preview text…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Clear</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Preview size value</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Preview size</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Waterfall</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show the text at 12, 18, 24, 36, 48, 72 and 96 pt</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sample</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to preview this font</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Character Set</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to read font metadata</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Deactivate</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Activate</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>LibraryList</name>
    <message>
        <source>All Fonts</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Active Fonts</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>1 font</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>%Ln fonts</source>
        <translation type="unfinished">
            <numerusform></numerusform>
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>Library</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Morvane</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save problem</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Search</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Search…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>More Toolbar Items</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Find</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the disk is full</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>your disk quota is used up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the file is larger than this system allows</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the disk is read-only</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Morvane may not write to its folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Your last changes couldn&apos;t be saved: %1. Quit anyway?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>If you quit now, the changes made since the problem began are lost. Free some space, then close Morvane again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Quit Anyway</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add Folder as Source</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add “%1” as a source of fonts?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“%1” can&apos;t be opened: Morvane opens font files (.ttf, .otf, .ttc, .otc, .dfont) and folders.</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>%n items can&apos;t be opened: Morvane opens font files (.ttf, .otf, .ttc, .otc, .dfont) and folders.</source>
        <translation type="unfinished">
            <numerusform></numerusform>
            <numerusform></numerusform>
        </translation>
    </message>
</context>
<context>
    <name>MenuText</name>
    <message>
        <source>About Morvane</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>MessageArea</name>
    <message>
        <source>&amp;Show</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Dismiss</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Message</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Lists the files the message is about</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Dismiss</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Files Concerned</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Files</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>OpenedFontView</name>
    <message>
        <source>Add Folder as Source</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>In %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This folder is in your library</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ProcessingOverlay</name>
    <message>
        <source>Working</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Progress</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This is taking longer than it should: a font file or the drive it is on isn&apos;t answering.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stops after the fonts being worked on now; what is done stays done</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ReindexingStrip</name>
    <message>
        <source>Updating font library…</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SampleView</name>
    <message>
        <source>Copy</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Select All</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SearchResultsList</name>
    <message>
        <source>Search Results</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SearchResultsModel</name>
    <message>
        <source>in %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SearchResultsView</name>
    <message>
        <source>Searching folders…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No matching folders</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Try a different search term.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>1 font named like “%1”</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 fonts named like “%2”</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SidebarDelegate</name>
    <message>
        <source>No Sources</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Click the + button to add a font folder.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Name</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SidebarList</name>
    <message>
        <source>Collections</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sources</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add Folder as Source</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The fonts come from several folders. Which one should be a source?</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SidebarModel</name>
    <message numerus="yes">
        <source>%n font(s)</source>
        <translation type="unfinished">
            <numerusform></numerusform>
            <numerusform></numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n item(s)</source>
        <translation type="unfinished">
            <numerusform></numerusform>
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>Not available</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No Sources</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Click the + button to add a font folder.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Source</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Collection</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SidebarView</name>
    <message>
        <source>Sidebar</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Library</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sources</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add a font folder source</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Collections</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>New Collection</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SingleColumnView</name>
    <message>
        <source>Column %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ToolbarInputField</name>
    <message>
        <source>Clear</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>UnavailableSourceView</name>
    <message>
        <source>Try Again</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not Available</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Its active fonts stay saved and are activated again when the folder is back: connect the drive or share, or make the folder readable.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not available — the folder %1 can&apos;t be reached.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>Browse, activate and organise folders of fonts.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Font files to show, or folders to add as sources.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
