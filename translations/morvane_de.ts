<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>AppState</name>
    <message>
        <source>Morvane can't watch all your source folders (the system's limit of watched folders is reached): fonts added to them appear after Refresh Sources.</source>
        <translation>Morvane kann nicht alle Quellordner beobachten (das Systemlimit für beobachtete Ordner ist erreicht): Neu hinzugefügte Schriften erscheinen nach „Quellen aktualisieren“.</translation>
    </message>
    <message>
        <source>Activating fonts (%1 of %2)...</source>
        <translation>Schriften werden aktiviert (%1 von %2) …</translation>
    </message>
    <message>
        <source>Deactivating fonts (%1 of %2)...</source>
        <translation>Schriften werden deaktiviert (%1 von %2) …</translation>
    </message>
    <message>
        <source>Restoring fonts (%1 of %2)...</source>
        <translation>Schriften werden wiederhergestellt (%1 von %2) …</translation>
    </message>
    <message>
        <source>Updating fonts (%1 of %2)...</source>
        <translation>Schriften werden aktualisiert (%1 von %2) …</translation>
    </message>
    <message>
        <source>it couldn't be activated</source>
        <translation>sie konnte nicht aktiviert werden</translation>
    </message>
    <message>
        <source>it couldn't be deactivated</source>
        <translation>sie konnte nicht deaktiviert werden</translation>
    </message>
    <message>
        <source>Couldn't activate “%1”: %2</source>
        <translation>„%1“ konnte nicht aktiviert werden: %2</translation>
    </message>
    <message>
        <source>Couldn't deactivate “%1”: %2</source>
        <translation>„%1“ konnte nicht deaktiviert werden: %2</translation>
    </message>
    <message>
        <source>%1 of %2 fonts couldn't be activated.</source>
        <translation>%1 von %2 Schriften konnten nicht aktiviert werden.</translation>
    </message>
    <message>
        <source>%1 of %2 fonts couldn't be deactivated.</source>
        <translation>%1 von %2 Schriften konnten nicht deaktiviert werden.</translation>
    </message>
    <message>
        <source>1 font couldn't be activated</source>
        <translation>1 Schrift konnte nicht aktiviert werden</translation>
    </message>
    <message numerus="yes">
        <source>%n fonts couldn't be activated</source>
        <translation>
            <numerusform>%n Schrift konnte nicht aktiviert werden</numerusform><numerusform>%n Schriften konnten nicht aktiviert werden</numerusform></translation>
    </message>
    <message>
        <source>Morvane can't write to %1 (%2), so %3. They stay saved and are activated again when Morvane starts with the folder writable; to fix it, run “sudo chown -R $USER %1”.</source>
        <translation>Morvane kann nicht in %1 schreiben (%2), daher %3. Sie bleiben gespeichert und werden wieder aktiviert, sobald Morvane mit beschreibbarem Ordner startet; zur Abhilfe „sudo chown -R $USER %1“ ausführen.</translation>
    </message>
    <message>
        <source>Morvane stopped waiting for a font that didn't answer. Fonts done before stay as they are; a file on a drive or network share that stopped responding is the usual cause.</source>
        <translation>Morvane wartet nicht länger auf eine Schrift, die nicht antwortet. Bereits bearbeitete Schriften bleiben, wie sie sind; meist antwortet ein Laufwerk oder eine Netzwerkfreigabe nicht mehr.</translation>
    </message>
    <message>
        <source>Stopped after activating %1 of %2 fonts; the others are as they were.</source>
        <translation>Nach %1 von %2 aktivierten Schriften angehalten; die übrigen sind unverändert.</translation>
    </message>
    <message>
        <source>Stopped after deactivating %1 of %2 fonts; the others are as they were.</source>
        <translation>Nach %1 von %2 deaktivierten Schriften angehalten; die übrigen sind unverändert.</translation>
    </message>
    <message>
        <source>Indexing fonts (%1 of %2)…</source>
        <translation>Schriften werden erfasst (%1 von %2) …</translation>
    </message>
    <message>
        <source>New Collection</source>
        <translation>Neue Sammlung</translation>
    </message>
    <message>
        <source>Couldn't use “%1” as the collection's icon: %2.</source>
        <translation>„%1“ konnte nicht als Symbol der Sammlung verwendet werden: %2.</translation>
    </message>
    <message>
        <source>Couldn't use “%1” as the collection's icon: it is not an image Morvane can read.</source>
        <translation>„%1“ konnte nicht als Symbol der Sammlung verwendet werden: Morvane kann dieses Bild nicht lesen.</translation>
    </message>
    <message>
        <source>This file system doesn't keep tags, so the licence status of “%1” can't be kept.</source>
        <translation>Dieses Dateisystem speichert keine Schlagwörter, daher kann der Lizenzstatus von „%1“ nicht gespeichert werden.</translation>
    </message>
    <message>
        <source>Couldn't set the licence status of “%1”: %2.</source>
        <translation>Der Lizenzstatus von „%1“ konnte nicht gesetzt werden: %2.</translation>
    </message>
    <message>
        <source>Restoring fonts…</source>
        <translation>Schriften werden wiederhergestellt …</translation>
    </message>
    <message>
        <source>“%1” is a smart collection: its fonts are the ones that answer its filters. To change them, choose Edit Filters… in its menu.</source>
        <translation>„%1“ ist eine intelligente Sammlung: Ihre Schriften sind die, auf die ihre Filter zutreffen. Um sie zu ändern, im Menü der Sammlung „Filter bearbeiten …“ wählen.</translation>
    </message>
    <message>
        <source>The filters of “%1” are too long to ask (%2; at most %3): its fonts stay as they were. Shorten the filter text, or the list of folders or characters, and save again.</source>
        <translation>Die Filter von „%1“ sind zu lang für eine Abfrage (%2; höchstens %3): Ihre Schriften bleiben, wie sie waren. Den Filtertext oder die Liste der Ordner oder Zeichen kürzen und erneut speichern.</translation>
    </message>
    <message>
        <source>Turned off the fonts in “%1”. “%2” couldn't be activated: %3</source>
        <translation>Die Schriften in „%1“ wurden ausgeschaltet. „%2“ konnte nicht aktiviert werden: %3</translation>
    </message>
    <message numerus="yes">
        <source>Turned off the fonts in “%1”. %n of its fonts couldn't be activated.</source>
        <translation>
            <numerusform>Die Schriften in „%1“ wurden ausgeschaltet. %n Schrift darin konnte nicht aktiviert werden.</numerusform><numerusform>Die Schriften in „%1“ wurden ausgeschaltet. %n Schriften darin konnten nicht aktiviert werden.</numerusform></translation>
    </message>
    <message>
        <source>Copying fonts for sandboxed apps…</source>
        <translation>Schriften für isolierte Apps werden kopiert …</translation>
    </message>
    <message>
        <source>Removing copies of fonts…</source>
        <translation>Kopien von Schriften werden entfernt …</translation>
    </message>
    <message>
        <source>“%1” is already active from another file.</source>
        <translation>„%1“ ist bereits aus einer anderen Datei aktiv.</translation>
    </message>
    <message>
        <source>%1 fonts are already active from other files.</source>
        <translation>%1 Schriften sind bereits aus anderen Dateien aktiv.</translation>
    </message>
    <message>
        <source>%1 is active now, and %2 has the same PostScript name. With both active, every program picks one of them on its own. Replace the active one, or keep both?</source>
        <translation>%1 ist jetzt aktiv, und %2 hat denselben PostScript-Namen. Sind beide aktiv, wählt jedes Programm selbst eine davon. Die aktive ersetzen oder beide behalten?</translation>
    </message>
    <message>
        <source>With both files of a name active, every program picks one of them on its own. Replace the active ones, or keep both?</source>
        <translation>Sind beide Dateien eines Namens aktiv, wählt jedes Programm selbst eine davon. Die aktiven ersetzen oder beide behalten?</translation>
    </message>
    <message>
        <source>Replace</source>
        <translation>Ersetzen</translation>
    </message>
    <message>
        <source>Keep Both</source>
        <translation>Beide behalten</translation>
    </message>
</context>
<context>
    <name>AxisControls</name>
    <message>
        <source>Variable Font Axes</source>
        <translation>Achsen der variablen Schrift</translation>
    </message>
    <message>
        <source>Reset to Defaults</source>
        <translation>Auf Standard zurücksetzen</translation>
    </message>
    <message>
        <source>Named instance</source>
        <translation>Benannte Instanz</translation>
    </message>
    <message>
        <source>Custom</source>
        <translation>Eigene</translation>
    </message>
    <message>
        <source>Instance</source>
        <translation>Instanz</translation>
    </message>
</context>
<context>
    <name>CollectionMemberList</name>
    <message>
        <source>Members</source>
        <translation>Mitglieder</translation>
    </message>
</context>
<context>
    <name>CollectionMemberModel</name>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Font</source>
        <translation>Schrift</translation>
    </message>
    <message>
        <source>Missing</source>
        <translation>Fehlt</translation>
    </message>
</context>
<context>
    <name>CollectionView</name>
    <message>
        <source>Collection</source>
        <translation>Sammlung</translation>
    </message>
    <message>
        <source>Collection name</source>
        <translation>Name der Sammlung</translation>
    </message>
    <message>
        <source>Collection contents</source>
        <translation>Inhalt der Sammlung</translation>
    </message>
    <message>
        <source>Drag fonts or folders here</source>
        <translation>Schriften oder Ordner hierher ziehen</translation>
    </message>
    <message>
        <source>Empty collection</source>
        <translation>Leere Sammlung</translation>
    </message>
    <message>
        <source>Deactivate All</source>
        <translation>Alle deaktivieren</translation>
    </message>
    <message>
        <source>Activate All</source>
        <translation>Alle aktivieren</translation>
    </message>
</context>
<context>
    <name>ColumnBrowserView</name>
    <message>
        <source>Font browser</source>
        <translation>Schriftenbrowser</translation>
    </message>
    <message>
        <source>Path</source>
        <translation>Pfad</translation>
    </message>
    <message>
        <source>Columns</source>
        <translation>Spalten</translation>
    </message>
    <message>
        <source>current</source>
        <translation>aktuell</translation>
    </message>
</context>
<context>
    <name>CompareView</name>
    <message>
        <source>Compared faces</source>
        <translation>Verglichene Schnitte</translation>
    </message>
    <message>
        <source>Unable to preview</source>
        <translation>Keine Vorschau möglich</translation>
    </message>
    <message>
        <source>Compare</source>
        <translation>Vergleichen</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Back to the font list</source>
        <translation>Zurück zur Schriftenliste</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Overlay</source>
        <translation>Überlagern</translation>
    </message>
    <message>
        <source>Axes</source>
        <translation>Achsen</translation>
    </message>
    <message>
        <source>Axes of %1</source>
        <translation>Achsen von %1</translation>
    </message>
</context>
<context>
    <name>Confirmations</name>
    <message>
        <source>Its 1 active font will be deactivated. </source>
        <translation>Ihre 1 aktive Schrift wird deaktiviert. </translation>
    </message>
    <message>
        <source>Its %1 active fonts will be deactivated. </source>
        <translation>Ihre %1 aktiven Schriften werden deaktiviert. </translation>
    </message>
    <message>
        <source>Remove “%1” from Morvane?</source>
        <translation>„%1“ aus Morvane entfernen?</translation>
    </message>
    <message>
        <source>The files stay where they are.</source>
        <translation>Die Dateien bleiben, wo sie sind.</translation>
    </message>
    <message>
        <source>Remove Source</source>
        <translation>Quelle entfernen</translation>
    </message>
    <message>
        <source>Its 1 item stays where it is on disk; only the collection goes.</source>
        <translation>Ihr 1 Eintrag bleibt auf der Festplatte, wo er ist; nur die Sammlung wird gelöscht.</translation>
    </message>
    <message>
        <source>Its %1 items stay where they are on disk; only the collection goes.</source>
        <translation>Ihre %1 Einträge bleiben auf der Festplatte, wo sie sind; nur die Sammlung wird gelöscht.</translation>
    </message>
    <message>
        <source>Delete the collection “%1”?</source>
        <translation>Die Sammlung „%1“ löschen?</translation>
    </message>
    <message>
        <source>Delete Collection</source>
        <translation>Sammlung löschen</translation>
    </message>
</context>
<context>
    <name>ContextMenuText</name>
    <message>
        <source>License Status</source>
        <translation>Lizenzstatus</translation>
    </message>
    <message>
        <source>Show in File Manager</source>
        <translation>In der Dateiverwaltung zeigen</translation>
    </message>
    <message>
        <source>Deactivate All Fonts in Folder</source>
        <translation>Alle Schriften im Ordner deaktivieren</translation>
    </message>
    <message>
        <source>Activate All Fonts in Folder</source>
        <translation>Alle Schriften im Ordner aktivieren</translation>
    </message>
    <message>
        <source>Deactivate Font</source>
        <translation>Schrift deaktivieren</translation>
    </message>
    <message>
        <source>Activate Font</source>
        <translation>Schrift aktivieren</translation>
    </message>
    <message>
        <source>Add to Collection</source>
        <translation>Zu Sammlung hinzufügen</translation>
    </message>
    <message>
        <source>Remove Source</source>
        <translation>Quelle entfernen</translation>
    </message>
    <message>
        <source>Rename</source>
        <translation>Umbenennen</translation>
    </message>
    <message>
        <source>Set Custom Icon…</source>
        <translation>Eigenes Symbol festlegen …</translation>
    </message>
    <message>
        <source>Remove Custom Icon</source>
        <translation>Eigenes Symbol entfernen</translation>
    </message>
    <message>
        <source>Delete Collection</source>
        <translation>Sammlung löschen</translation>
    </message>
    <message>
        <source>Remove from Collection</source>
        <translation>Aus Sammlung entfernen</translation>
    </message>
    <message>
        <source>Activate for This Session</source>
        <translation>Für diese Sitzung aktivieren</translation>
    </message>
</context>
<context>
    <name>ContextMenus</name>
    <message>
        <source>No file manager answered, so “%1” can't be shown. It is in %2.</source>
        <translation>Keine Dateiverwaltung hat geantwortet, daher kann „%1“ nicht gezeigt werden. Es liegt in %2.</translation>
    </message>
    <message>
        <source>Deactivate All Fonts in Source</source>
        <translation>Alle Schriften der Quelle deaktivieren</translation>
    </message>
    <message>
        <source>Activate All Fonts in Source</source>
        <translation>Alle Schriften der Quelle aktivieren</translation>
    </message>
    <message>
        <source>Deactivate All Fonts in Collection</source>
        <translation>Alle Schriften der Sammlung deaktivieren</translation>
    </message>
    <message>
        <source>Activate All Fonts in Collection</source>
        <translation>Alle Schriften der Sammlung aktivieren</translation>
    </message>
    <message>
        <source>Edit Filters…</source>
        <translation>Filter bearbeiten …</translation>
    </message>
</context>
<context>
    <name>EmptyStateView</name>
    <message>
        <source>No Font Sources</source>
        <translation>Keine Schriftquellen</translation>
    </message>
    <message>
        <source>Add a folder containing your fonts to get started.</source>
        <translation>Fügen Sie zu Beginn einen Ordner mit Ihren Schriften hinzu.</translation>
    </message>
    <message>
        <source>Add Folder</source>
        <translation>Ordner hinzufügen</translation>
    </message>
</context>
<context>
    <name>FeatureToggles</name>
    <message>
        <source>OpenType Features</source>
        <translation>OpenType-Merkmale</translation>
    </message>
    <message>
        <source>Access All Alternates</source>
        <translation>Alle Alternativen</translation>
    </message>
    <message>
        <source>Small Capitals From Capitals</source>
        <translation>Kapitälchen aus Großbuchstaben</translation>
    </message>
    <message>
        <source>Contextual Alternates</source>
        <translation>Kontextbedingte Alternativen</translation>
    </message>
    <message>
        <source>Case-Sensitive Forms</source>
        <translation>Versalformen</translation>
    </message>
    <message>
        <source>Glyph Composition</source>
        <translation>Glyphenzusammensetzung</translation>
    </message>
    <message>
        <source>Contextual Ligatures</source>
        <translation>Kontextbedingte Ligaturen</translation>
    </message>
    <message>
        <source>Discretionary Ligatures</source>
        <translation>Bedingte Ligaturen</translation>
    </message>
    <message>
        <source>Denominators</source>
        <translation>Nenner</translation>
    </message>
    <message>
        <source>Fractions</source>
        <translation>Brüche</translation>
    </message>
    <message>
        <source>Historical Ligatures</source>
        <translation>Historische Ligaturen</translation>
    </message>
    <message>
        <source>Kerning</source>
        <translation>Unterschneidung</translation>
    </message>
    <message>
        <source>Standard Ligatures</source>
        <translation>Standardligaturen</translation>
    </message>
    <message>
        <source>Lining Figures</source>
        <translation>Versalziffern</translation>
    </message>
    <message>
        <source>Localized Forms</source>
        <translation>Lokalisierte Formen</translation>
    </message>
    <message>
        <source>Mark Positioning</source>
        <translation>Positionierung von Akzenten</translation>
    </message>
    <message>
        <source>Mark to Mark Positioning</source>
        <translation>Akzent-an-Akzent-Positionierung</translation>
    </message>
    <message>
        <source>Numerators</source>
        <translation>Zähler</translation>
    </message>
    <message>
        <source>Oldstyle Figures</source>
        <translation>Mediävalziffern</translation>
    </message>
    <message>
        <source>Ordinals</source>
        <translation>Ordinalzeichen</translation>
    </message>
    <message>
        <source>Proportional Figures</source>
        <translation>Proportionalziffern</translation>
    </message>
    <message>
        <source>Required Ligatures</source>
        <translation>Erforderliche Ligaturen</translation>
    </message>
    <message>
        <source>Stylistic Alternates</source>
        <translation>Stilistische Alternativen</translation>
    </message>
    <message>
        <source>Scientific Inferiors</source>
        <translation>Wissenschaftliche Tiefstellung</translation>
    </message>
    <message>
        <source>Small Capitals</source>
        <translation>Kapitälchen</translation>
    </message>
    <message>
        <source>Subscript</source>
        <translation>Tiefgestellt</translation>
    </message>
    <message>
        <source>Superscript</source>
        <translation>Hochgestellt</translation>
    </message>
    <message>
        <source>Swash</source>
        <translation>Zierbuchstaben</translation>
    </message>
    <message>
        <source>Tabular Figures</source>
        <translation>Tabellenziffern</translation>
    </message>
    <message>
        <source>Slashed Zero</source>
        <translation>Null mit Schrägstrich</translation>
    </message>
    <message>
        <source>Initial Forms</source>
        <translation>Anfangsformen</translation>
    </message>
    <message>
        <source>Medial Forms</source>
        <translation>Mittelformen</translation>
    </message>
    <message>
        <source>Terminal Forms</source>
        <translation>Endformen</translation>
    </message>
    <message>
        <source>Isolated Forms</source>
        <translation>Isolierte Formen</translation>
    </message>
    <message>
        <source>Cursive Positioning</source>
        <translation>Kursive Positionierung</translation>
    </message>
    <message>
        <source>Stylistic Set %1</source>
        <translation>Stilsatz %1</translation>
    </message>
    <message>
        <source>Character Variant %1</source>
        <translation>Zeichenvariante %1</translation>
    </message>
</context>
<context>
    <name>FolderChooserText</name>
    <message>
        <source>Choose a Font Folder</source>
        <translation>Schriftordner wählen</translation>
    </message>
    <message>
        <source>Select a folder containing fonts</source>
        <translation>Einen Ordner mit Schriften auswählen</translation>
    </message>
    <message>
        <source>Choose an Icon</source>
        <translation>Symbol wählen</translation>
    </message>
    <message>
        <source>Select a PNG or SVG image</source>
        <translation>Ein PNG- oder SVG-Bild auswählen</translation>
    </message>
</context>
<context>
    <name>FontFilterBar</name>
    <message>
        <source>Serif</source>
        <translation>Serifen</translation>
    </message>
    <message>
        <source>Sans Serif</source>
        <translation>Serifenlos</translation>
    </message>
    <message>
        <source>Slab Serif</source>
        <translation>Serifenbetont</translation>
    </message>
    <message>
        <source>Script</source>
        <translation>Schreibschrift</translation>
    </message>
    <message>
        <source>Display</source>
        <translation>Auszeichnung</translation>
    </message>
    <message>
        <source>Monospace</source>
        <translation>Dicktengleich</translation>
    </message>
    <message>
        <source>Symbol</source>
        <translation>Symbole</translation>
    </message>
    <message>
        <source>Unclassified</source>
        <translation>Nicht eingeordnet</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Sprache</translation>
    </message>
    <message>
        <source>Classification</source>
        <translation>Einordnung</translation>
    </message>
    <message>
        <source>Weight</source>
        <translation>Stärke</translation>
    </message>
    <message>
        <source>Width</source>
        <translation>Breite</translation>
    </message>
    <message>
        <source>Licence Status</source>
        <translation>Lizenzstatus</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>Quelle</translation>
    </message>
    <message>
        <source>Italic</source>
        <translation>Kursiv</translation>
    </message>
    <message>
        <source>Variable</source>
        <translation>Variabel</translation>
    </message>
    <message>
        <source>Monospaced</source>
        <translation>Dicktengleich</translation>
    </message>
    <message>
        <source>Active</source>
        <translation>Aktiv</translation>
    </message>
    <message>
        <source>Clear Filters</source>
        <translation>Filter zurücksetzen</translation>
    </message>
    <message>
        <source>Any Weight</source>
        <translation>Jede Stärke</translation>
    </message>
    <message>
        <source>Thin to Light (100–300)</source>
        <translation>Dünn bis Leicht (100–300)</translation>
    </message>
    <message>
        <source>Regular to Medium (400–500)</source>
        <translation>Normal bis Mittel (400–500)</translation>
    </message>
    <message>
        <source>Semibold to Black (600–900)</source>
        <translation>Halbfett bis Schwarz (600–900)</translation>
    </message>
    <message>
        <source>Any Width</source>
        <translation>Jede Breite</translation>
    </message>
    <message>
        <source>Condensed</source>
        <translation>Schmal</translation>
    </message>
    <message>
        <source>Normal</source>
        <translation>Normal</translation>
    </message>
    <message>
        <source>Expanded</source>
        <translation>Breit</translation>
    </message>
    <message>
        <source>Search languages</source>
        <translation>Sprachen suchen</translation>
    </message>
</context>
<context>
    <name>FontListDelegate</name>
    <message>
        <source>Unable to preview</source>
        <translation>Keine Vorschau möglich</translation>
    </message>
</context>
<context>
    <name>FontListModel</name>
    <message>
        <source>active</source>
        <translation>aktiv</translation>
    </message>
    <message>
        <source>mixed</source>
        <translation>gemischt</translation>
    </message>
    <message>
        <source>inactive</source>
        <translation>inaktiv</translation>
    </message>
    <message>
        <source>1 style</source>
        <translation>1 Schnitt</translation>
    </message>
    <message numerus="yes">
        <source>%n styles</source>
        <translation>
            <numerusform>%n Schnitt</numerusform><numerusform>%n Schnitte</numerusform></translation>
    </message>
    <message>
        <source>active for this session</source>
        <translation>für diese Sitzung aktiv</translation>
    </message>
    <message>
        <source>%1 · modified %2 · %3</source>
        <translation>%1 · geändert %2 · %3</translation>
    </message>
</context>
<context>
    <name>FontListTree</name>
    <message>
        <source>&amp;Compare</source>
        <translation>&amp;Vergleichen</translation>
    </message>
    <message>
        <source>Keep Only This File Active</source>
        <translation>Nur diese Datei aktiv lassen</translation>
    </message>
</context>
<context>
    <name>FontListView</name>
    <message>
        <source>Font list</source>
        <translation>Schriftenliste</translation>
    </message>
    <message>
        <source>Filter fonts…</source>
        <translation>Schriften filtern …</translation>
    </message>
    <message>
        <source>Filter fonts</source>
        <translation>Schriften filtern</translation>
    </message>
    <message>
        <source>Sample size</source>
        <translation>Mustergröße</translation>
    </message>
    <message>
        <source>Names</source>
        <translation>Namen</translation>
    </message>
    <message>
        <source>Show each font's name</source>
        <translation>Den Namen jeder Schrift zeigen</translation>
    </message>
    <message>
        <source>Compare</source>
        <translation>Vergleichen</translation>
    </message>
    <message>
        <source>Compare two to twelve chosen fonts</source>
        <translation>Zwei bis zwölf gewählte Schriften vergleichen</translation>
    </message>
    <message>
        <source>Save as Smart Collection…</source>
        <translation>Als intelligente Sammlung sichern …</translation>
    </message>
    <message>
        <source>Save as Smart Collection</source>
        <translation>Als intelligente Sammlung sichern</translation>
    </message>
    <message>
        <source>Name:</source>
        <translation>Name:</translation>
    </message>
    <message>
        <source>Smart Collection</source>
        <translation>Intelligente Sammlung</translation>
    </message>
    <message>
        <source>Fonts</source>
        <translation>Schriften</translation>
    </message>
    <message>
        <source>Save Filters to “%1”</source>
        <translation>Filter in „%1“ sichern</translation>
    </message>
    <message>
        <source>1 family</source>
        <translation>1 Familie</translation>
    </message>
    <message>
        <source>%1 families</source>
        <translation>%1 Familien</translation>
    </message>
    <message>
        <source>1 face</source>
        <translation>1 Schnitt</translation>
    </message>
    <message>
        <source>%1 faces</source>
        <translation>%1 Schnitte</translation>
    </message>
</context>
<context>
    <name>FontNodeDelegate</name>
    <message>
        <source>Deactivate</source>
        <translation>Deaktivieren</translation>
    </message>
    <message>
        <source>Activate All</source>
        <translation>Alle aktivieren</translation>
    </message>
    <message>
        <source>Activate</source>
        <translation>Aktivieren</translation>
    </message>
    <message>
        <source>Active for this session: Deactivate</source>
        <translation>Für diese Sitzung aktiv: Deaktivieren</translation>
    </message>
</context>
<context>
    <name>FontNodeListModel</name>
    <message>
        <source>Folder, </source>
        <translation>Ordner, </translation>
    </message>
    <message>
        <source>Font, </source>
        <translation>Schrift, </translation>
    </message>
</context>
<context>
    <name>FontPreviewView</name>
    <message>
        <source>Family</source>
        <translation>Familie</translation>
    </message>
    <message>
        <source>Style</source>
        <translation>Stil</translation>
    </message>
    <message>
        <source>PostScript</source>
        <translation>PostScript</translation>
    </message>
    <message>
        <source>Format</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Glyphs</source>
        <translation>Glyphen</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
    <message>
        <source>Larger Preview</source>
        <translation>Größere Vorschau</translation>
    </message>
    <message>
        <source>Smaller Preview</source>
        <translation>Kleinere Vorschau</translation>
    </message>
    <message>
        <source>Static Font</source>
        <translation>Statische Schrift</translation>
    </message>
    <message>
        <source>Loading font…</source>
        <translation>Schrift wird geladen …</translation>
    </message>
    <message>
        <source>Font status</source>
        <translation>Schriftstatus</translation>
    </message>
    <message>
        <source>Font family</source>
        <translation>Schriftfamilie</translation>
    </message>
    <message>
        <source>Preview text</source>
        <translation>Vorschautext</translation>
    </message>
    <message>
        <source>Preview text…</source>
        <translation>Vorschautext …</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <source>Preview size value</source>
        <translation>Wert der Vorschaugröße</translation>
    </message>
    <message>
        <source>Preview size</source>
        <translation>Vorschaugröße</translation>
    </message>
    <message>
        <source>Waterfall</source>
        <translation>Wasserfall</translation>
    </message>
    <message>
        <source>Show the text at 12, 18, 24, 36, 48, 72 and 96 pt</source>
        <translation>Den Text in 12, 18, 24, 36, 48, 72 und 96 pt zeigen</translation>
    </message>
    <message>
        <source>Sample</source>
        <translation>Muster</translation>
    </message>
    <message>
        <source>Unable to preview this font</source>
        <translation>Für diese Schrift ist keine Vorschau möglich</translation>
    </message>
    <message>
        <source>Character Set</source>
        <translation>Zeichensatz</translation>
    </message>
    <message>
        <source>Unable to read font metadata</source>
        <translation>Die Metadaten der Schrift können nicht gelesen werden</translation>
    </message>
    <message>
        <source>Deactivate</source>
        <translation>Deaktivieren</translation>
    </message>
    <message>
        <source>Activate</source>
        <translation>Aktivieren</translation>
    </message>
</context>
<context>
    <name>LibraryList</name>
    <message>
        <source>All Fonts</source>
        <translation>Alle Schriften</translation>
    </message>
    <message>
        <source>Active Fonts</source>
        <translation>Aktive Schriften</translation>
    </message>
    <message>
        <source>1 font</source>
        <translation>1 Schrift</translation>
    </message>
    <message numerus="yes">
        <source>%Ln fonts</source>
        <translation>
            <numerusform>%Ln Schrift</numerusform><numerusform>%Ln Schriften</numerusform></translation>
    </message>
    <message>
        <source>Library</source>
        <translation>Bibliothek</translation>
    </message>
    <message>
        <source>Duplicates</source>
        <translation>Duplikate</translation>
    </message>
    <message>
        <source>Conflicts</source>
        <translation>Konflikte</translation>
    </message>
    <message>
        <source>One font in several files</source>
        <translation>Eine Schrift in mehreren Dateien</translation>
    </message>
    <message>
        <source>Active twice under one name</source>
        <translation>Zweimal aktiv unter einem Namen</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Morvane</source>
        <translation>Morvane</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Suche</translation>
    </message>
    <message>
        <source>Search…</source>
        <translation>Suchen …</translation>
    </message>
    <message>
        <source>More Toolbar Items</source>
        <translation>Weitere Werkzeugleisten-Elemente</translation>
    </message>
    <message>
        <source>Find</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>the disk is full</source>
        <translation>der Datenträger ist voll</translation>
    </message>
    <message>
        <source>your disk quota is used up</source>
        <translation>Ihr Speicherkontingent ist aufgebraucht</translation>
    </message>
    <message>
        <source>the file is larger than this system allows</source>
        <translation>die Datei ist größer, als dieses System erlaubt</translation>
    </message>
    <message>
        <source>the disk is read-only</source>
        <translation>der Datenträger ist schreibgeschützt</translation>
    </message>
    <message>
        <source>Morvane may not write to its folder</source>
        <translation>Morvane darf nicht in seinen Ordner schreiben</translation>
    </message>
    <message>
        <source>Your last changes couldn't be saved: %1. Quit anyway?</source>
        <translation>Ihre letzten Änderungen konnten nicht gesichert werden: %1. Trotzdem beenden?</translation>
    </message>
    <message>
        <source>If you quit now, the changes made since the problem began are lost. Free some space, then close Morvane again.</source>
        <translation>Wenn Sie jetzt beenden, gehen die Änderungen seit Beginn des Problems verloren. Schaffen Sie Platz und schließen Sie Morvane dann erneut.</translation>
    </message>
    <message>
        <source>Quit Anyway</source>
        <translation>Trotzdem beenden</translation>
    </message>
    <message>
        <source>Add Folder as Source</source>
        <translation>Ordner als Quelle hinzufügen</translation>
    </message>
    <message>
        <source>Add “%1” as a source of fonts?</source>
        <translation>„%1“ als Schriftquelle hinzufügen?</translation>
    </message>
    <message>
        <source>“%1” can't be opened: Morvane opens font files (.ttf, .otf, .ttc, .otc, .dfont) and folders.</source>
        <translation>„%1“ kann nicht geöffnet werden: Morvane öffnet Schriftdateien (.ttf, .otf, .ttc, .otc, .dfont) und Ordner.</translation>
    </message>
    <message numerus="yes">
        <source>%n items can't be opened: Morvane opens font files (.ttf, .otf, .ttc, .otc, .dfont) and folders.</source>
        <translation>
            <numerusform>%n Eintrag kann nicht geöffnet werden: Morvane öffnet Schriftdateien (.ttf, .otf, .ttc, .otc, .dfont) und Ordner.</numerusform><numerusform>%n Einträge können nicht geöffnet werden: Morvane öffnet Schriftdateien (.ttf, .otf, .ttc, .otc, .dfont) und Ordner.</numerusform></translation>
    </message>
</context>
<context>
    <name>MenuText</name>
    <message>
        <source>About Morvane</source>
        <translation>Über Morvane</translation>
    </message>
    <message>
        <source>Add Font Folder...</source>
        <translation>Schriftordner hinzufügen …</translation>
    </message>
    <message>
        <source>New Collection</source>
        <translation>Neue Sammlung</translation>
    </message>
    <message>
        <source>Refresh Sources</source>
        <translation>Quellen aktualisieren</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>&lt;p&gt;&lt;b&gt;Morvane %1&lt;/b&gt;&lt;/p&gt;&lt;p&gt;A font manager for Linux: browse folders of fonts, activate them for every application, group them into collections.&lt;/p&gt;&lt;p&gt;Free software under the GNU General Public License, version 3 or later.&lt;/p&gt;&lt;p&gt;Morvane keeps its library in &lt;tt&gt;%2&lt;/tt&gt; and the fonts it activates in &lt;tt&gt;%3&lt;/tt&gt;.&lt;/p&gt;</source>
        <translation>&lt;p&gt;&lt;b&gt;Morvane %1&lt;/b&gt;&lt;/p&gt;&lt;p&gt;Eine Schriftverwaltung für Linux: Ordner voller Schriften durchsehen, sie für alle Anwendungen aktivieren, sie in Sammlungen ordnen.&lt;/p&gt;&lt;p&gt;Freie Software unter der GNU General Public License, Version 3 oder später.&lt;/p&gt;&lt;p&gt;Morvane bewahrt seine Bibliothek in &lt;tt&gt;%2&lt;/tt&gt; auf und die aktivierten Schriften in &lt;tt&gt;%3&lt;/tt&gt;.&lt;/p&gt;</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>Deactivate All Fonts</source>
        <translation>Alle Schriften deaktivieren</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>Copy fonts for sandboxed apps?</source>
        <translation>Schriften für isolierte Apps kopieren?</translation>
    </message>
    <message>
        <source>Apps installed from Flathub see your font folder but not the folders Morvane links into when they are on another drive. Morvane copies those fonts into your font folder instead: the copies take %1 now, and more as you activate fonts from other drives.</source>
        <translation>Von Flathub installierte Apps sehen Ihren Schriftordner, aber nicht die Ordner auf anderen Laufwerken, auf die Morvane verweist. Morvane kopiert diese Schriften stattdessen in Ihren Schriftordner: Die Kopien belegen jetzt %1 und mehr, wenn Sie Schriften von anderen Laufwerken aktivieren.</translation>
    </message>
    <message>
        <source>Copy Fonts</source>
        <translation>Schriften kopieren</translation>
    </message>
    <message>
        <source>Copy Fonts for Sandboxed Apps</source>
        <translation>Schriften für isolierte Apps kopieren</translation>
    </message>
    <message>
        <source>Keep Session Fonts Until Logout</source>
        <translation>Sitzungsschriften bis zur Abmeldung behalten</translation>
    </message>
</context>
<context>
    <name>MessageArea</name>
    <message>
        <source>&amp;Show</source>
        <translation>&amp;Zeigen</translation>
    </message>
    <message>
        <source>&amp;Dismiss</source>
        <translation>&amp;Schließen</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Meldung</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>Zeigen</translation>
    </message>
    <message>
        <source>Lists the files the message is about</source>
        <translation>Listet die Dateien, um die es in der Meldung geht</translation>
    </message>
    <message>
        <source>Dismiss</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Files Concerned</source>
        <translation>Betroffene Dateien</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
</context>
<context>
    <name>OpenedFontView</name>
    <message>
        <source>Add Folder as Source</source>
        <translation>Ordner als Quelle hinzufügen</translation>
    </message>
    <message>
        <source>In %1</source>
        <translation>In %1</translation>
    </message>
    <message>
        <source>This folder is in your library</source>
        <translation>Dieser Ordner ist in Ihrer Bibliothek</translation>
    </message>
</context>
<context>
    <name>ProcessingOverlay</name>
    <message>
        <source>Working</source>
        <translation>In Arbeit</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>This is taking longer than it should: a font file or the drive it is on isn't answering.</source>
        <translation>Das dauert länger als erwartet: Eine Schriftdatei oder ihr Laufwerk antwortet nicht.</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Stops after the fonts being worked on now; what is done stays done</source>
        <translation>Hält nach den gerade bearbeiteten Schriften an; Erledigtes bleibt erledigt</translation>
    </message>
</context>
<context>
    <name>ReindexingStrip</name>
    <message>
        <source>Updating font library…</source>
        <translation>Schriftenbibliothek wird aktualisiert …</translation>
    </message>
</context>
<context>
    <name>SampleView</name>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>Alles auswählen</translation>
    </message>
</context>
<context>
    <name>SaveFailureBanner</name>
    <message>
        <source>Save problem</source>
        <translation>Problem beim Sichern</translation>
    </message>
    <message>
        <source>Morvane can't save its library in %1: %2. Changes made now are lost when Morvane quits, unless the folder can be written again before then.</source>
        <translation>Morvane kann seine Bibliothek nicht in %1 speichern: %2. Jetzt vorgenommene Änderungen gehen beim Beenden verloren, sofern der Ordner bis dahin nicht wieder beschreibbar ist.</translation>
    </message>
</context>
<context>
    <name>SearchResultsList</name>
    <message>
        <source>Search Results</source>
        <translation>Suchergebnisse</translation>
    </message>
</context>
<context>
    <name>SearchResultsModel</name>
    <message>
        <source>in %1</source>
        <translation>in %1</translation>
    </message>
</context>
<context>
    <name>SearchResultsView</name>
    <message>
        <source>Searching folders…</source>
        <translation>Ordner werden durchsucht …</translation>
    </message>
    <message>
        <source>No matching folders</source>
        <translation>Keine passenden Ordner</translation>
    </message>
    <message>
        <source>Try a different search term.</source>
        <translation>Versuchen Sie einen anderen Suchbegriff.</translation>
    </message>
    <message>
        <source>1 font named like “%1”</source>
        <translation>1 Schrift mit „%1“ im Namen</translation>
    </message>
    <message>
        <source>%1 fonts named like “%2”</source>
        <translation>%1 Schriften mit „%2“ im Namen</translation>
    </message>
</context>
<context>
    <name>SidebarDelegate</name>
    <message>
        <source>No Sources</source>
        <translation>Keine Quellen</translation>
    </message>
    <message>
        <source>Click the + button to add a font folder.</source>
        <translation>Klicken Sie auf +, um einen Schriftordner hinzuzufügen.</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
</context>
<context>
    <name>SidebarList</name>
    <message>
        <source>Collections</source>
        <translation>Sammlungen</translation>
    </message>
    <message>
        <source>Sources</source>
        <translation>Quellen</translation>
    </message>
    <message>
        <source>Add Folder as Source</source>
        <translation>Ordner als Quelle hinzufügen</translation>
    </message>
    <message>
        <source>The fonts come from several folders. Which one should be a source?</source>
        <translation>Die Schriften stammen aus mehreren Ordnern. Welcher soll eine Quelle werden?</translation>
    </message>
</context>
<context>
    <name>SidebarModel</name>
    <message numerus="yes">
        <source>%n font(s)</source>
        <translation>
            <numerusform>%n Schrift</numerusform><numerusform>%n Schriften</numerusform></translation>
    </message>
    <message numerus="yes">
        <source>%n item(s)</source>
        <translation>
            <numerusform>%n Eintrag</numerusform><numerusform>%n Einträge</numerusform></translation>
    </message>
    <message>
        <source>Not available</source>
        <translation>Nicht verfügbar</translation>
    </message>
    <message>
        <source>No Sources</source>
        <translation>Keine Quellen</translation>
    </message>
    <message>
        <source>Click the + button to add a font folder.</source>
        <translation>Klicken Sie auf +, um einen Schriftordner hinzuzufügen.</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>Quelle</translation>
    </message>
    <message>
        <source>Collection</source>
        <translation>Sammlung</translation>
    </message>
    <message>
        <source>active</source>
        <translation>aktiv</translation>
    </message>
    <message>
        <source>mixed</source>
        <translation>gemischt</translation>
    </message>
    <message>
        <source>inactive</source>
        <translation>inaktiv</translation>
    </message>
    <message>
        <source>active for this session</source>
        <translation>für diese Sitzung aktiv</translation>
    </message>
</context>
<context>
    <name>SidebarView</name>
    <message>
        <source>Sidebar</source>
        <translation>Seitenleiste</translation>
    </message>
    <message>
        <source>Library</source>
        <translation>Bibliothek</translation>
    </message>
    <message>
        <source>Sources</source>
        <translation>Quellen</translation>
    </message>
    <message>
        <source>Add a font folder source</source>
        <translation>Einen Schriftordner als Quelle hinzufügen</translation>
    </message>
    <message>
        <source>Collections</source>
        <translation>Sammlungen</translation>
    </message>
    <message>
        <source>New Collection</source>
        <translation>Neue Sammlung</translation>
    </message>
</context>
<context>
    <name>SingleColumnView</name>
    <message>
        <source>Column %1</source>
        <translation>Spalte %1</translation>
    </message>
</context>
<context>
    <name>ToolbarInputField</name>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
</context>
<context>
    <name>UnavailableSourceView</name>
    <message>
        <source>Try Again</source>
        <translation>Erneut versuchen</translation>
    </message>
    <message>
        <source>Not Available</source>
        <translation>Nicht verfügbar</translation>
    </message>
    <message>
        <source>Its active fonts stay saved and are activated again when the folder is back: connect the drive or share, or make the folder readable.</source>
        <translation>Seine aktiven Schriften bleiben gespeichert und werden wieder aktiviert, sobald der Ordner zurück ist: Schließen Sie das Laufwerk oder die Freigabe an, oder machen Sie den Ordner lesbar.</translation>
    </message>
    <message>
        <source>Not available — the folder %1 can't be reached.</source>
        <translation>Nicht verfügbar – der Ordner %1 ist nicht erreichbar.</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>Browse, activate and organise folders of fonts.</source>
        <translation>Ordner voller Schriften durchsehen, aktivieren und ordnen.</translation>
    </message>
    <message>
        <source>Font files to show, or folders to add as sources.</source>
        <translation>Anzuzeigende Schriftdateien oder als Quellen hinzuzufügende Ordner.</translation>
    </message>
</context>
</TS>