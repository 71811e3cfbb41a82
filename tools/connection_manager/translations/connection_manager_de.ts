<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>connection_manager::ConnectionEditor</name>
    <message>
        <source>&amp;Store</source>
        <translation>&amp;Speichern</translation>
    </message>
    <message>
        <source>The connection does not open at the moment. Store it all the same?</source>
        <translation>Die Verbindung lässt sich zurzeit nicht öffnen. Trotzdem speichern?</translation>
    </message>
    <message>
        <source>Opening the connection ...</source>
        <translation>Die Verbindung wird geöffnet ...</translation>
    </message>
    <message>
        <source>&amp;Test</source>
        <translation>&amp;Testen</translation>
    </message>
    <message>
        <source>The server %1 has no database &quot;%2&quot;. Create it?</source>
        <translation>Der Server %1 hat keine Datenbank „%2“. Soll sie angelegt werden?</translation>
    </message>
    <message>
        <source>S&amp;top</source>
        <translation>An&amp;halten</translation>
    </message>
    <message>
        <source>Another connection has this name by now. Choose another name.</source>
        <translation>Inzwischen trägt eine andere Verbindung diesen Namen. Bitte einen anderen wählen.</translation>
    </message>
    <message>
        <source>The connection was changed or removed by another program while this window was open. Nothing was stored. Close this window, and edit the connection as it is now.</source>
        <translation>Ein anderes Programm hat die Verbindung geändert oder entfernt, während dieses Fenster offen war. Nichts wurde gespeichert. Bitte dieses Fenster schließen und die Verbindung so bearbeiten, wie sie jetzt ist.</translation>
    </message>
    <message>
        <source>The file %1 is damaged: its connections cannot be read. Begin a new list with this connection? The damaged file is kept as %1.unreadable.</source>
        <translation>Die Datei %1 ist beschädigt: Ihre Verbindungen lassen sich nicht lesen. Mit dieser Verbindung eine neue Liste beginnen? Die beschädigte Datei bleibt als %1.unreadable erhalten.</translation>
    </message>
</context>
<context>
    <name>connection_manager::ConnectionForm</name>
    <message>
        <source>&amp;Name:</source>
        <translation>&amp;Name:</translation>
    </message>
    <message>
        <source>The name by which queries call the database</source>
        <translation>Der Name, unter dem Abfragen die Datenbank nennen</translation>
    </message>
    <message>
        <source>&amp;File:</source>
        <translation>&amp;Datei:</translation>
    </message>
    <message>
        <source>The path of the SQLite file</source>
        <translation>Der Pfad der SQLite-Datei</translation>
    </message>
    <message>
        <source>&amp;Host:</source>
        <translation>&amp;Rechner:</translation>
    </message>
    <message>
        <source>The name or the address of the server</source>
        <translation>Der Name oder die Adresse des Servers</translation>
    </message>
    <message>
        <source>&amp;Port:</source>
        <translation>&amp;Port:</translation>
    </message>
    <message>
        <source>The port of the server; empty stands for 3306</source>
        <translation>Der Port des Servers; leer bedeutet 3306</translation>
    </message>
    <message>
        <source>Data&amp;base:</source>
        <translation>Daten&amp;bank:</translation>
    </message>
    <message>
        <source>The database on the server</source>
        <translation>Die Datenbank auf dem Server</translation>
    </message>
    <message>
        <source>&amp;User:</source>
        <translation>Ben&amp;utzer:</translation>
    </message>
    <message>
        <source>The account that opens the database</source>
        <translation>Das Konto, das die Datenbank öffnet</translation>
    </message>
    <message>
        <source>Pass&amp;word:</source>
        <translation>Pass&amp;wort:</translation>
    </message>
    <message>
        <source>The password of the account</source>
        <translation>Das Passwort des Kontos</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>SQLite file</source>
        <translation>SQLite-Datei</translation>
    </message>
    <message>
        <source>MySQL or MariaDB server</source>
        <translation>MySQL- oder MariaDB-Server</translation>
    </message>
    <message>
        <source>&amp;Kind:</source>
        <translation>&amp;Art:</translation>
    </message>
    <message>
        <source>B&amp;rowse...</source>
        <translation>Du&amp;rchsuchen ...</translation>
    </message>
    <message>
        <source>Chooses the SQLite file</source>
        <translation>Wählt die SQLite-Datei aus</translation>
    </message>
    <message>
        <source>SQLite files (*.db *.sqlite);;All files (*)</source>
        <translation>SQLite-Dateien (*.db *.sqlite);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>needed</source>
        <translation>fehlt</translation>
    </message>
    <message>
        <source>taken</source>
        <translation>vergeben</translation>
    </message>
    <message>
        <source>a folder</source>
        <translation>ein Ordner</translation>
    </message>
    <message>
        <source>no such folder</source>
        <translation>Ordner fehlt</translation>
    </message>
    <message>
        <source>no number</source>
        <translation>keine Zahl</translation>
    </message>
    <message>
        <source>1 to 65535</source>
        <translation>1 bis 65535</translation>
    </message>
    <message>
        <source>new file</source>
        <translation>neue Datei</translation>
    </message>
</context>
<context>
    <name>connection_manager::ConnectionManager</name>
    <message>
        <source>Database connections</source>
        <translation>Datenbankverbindungen</translation>
    </message>
    <message>
        <source>Stored connections</source>
        <translation>Gespeicherte Verbindungen</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>Database</source>
        <translation>Datenbank</translation>
    </message>
    <message>
        <source>User</source>
        <translation>Benutzer</translation>
    </message>
    <message>
        <source>&amp;Add...</source>
        <translation>&amp;Hinzufügen ...</translation>
    </message>
    <message>
        <source>&amp;Edit...</source>
        <translation>&amp;Bearbeiten ...</translation>
    </message>
    <message>
        <source>&amp;Duplicate...</source>
        <translation>&amp;Duplizieren ...</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>&amp;Entfernen</translation>
    </message>
    <message>
        <source>&amp;Test</source>
        <translation>&amp;Testen</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Schließen</translation>
    </message>
    <message>
        <source>Stored in %1</source>
        <translation>Gespeichert in %1</translation>
    </message>
    <message>
        <source>SQLite</source>
        <translation>SQLite</translation>
    </message>
    <message>
        <source>MySQL</source>
        <translation>MySQL</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>Abbre&amp;chen</translation>
    </message>
    <message>
        <source>Add connection</source>
        <translation>Verbindung hinzufügen</translation>
    </message>
    <message>
        <source>Edit connection</source>
        <translation>Verbindung bearbeiten</translation>
    </message>
    <message>
        <source>Duplicate connection</source>
        <translation>Verbindung duplizieren</translation>
    </message>
    <message>
        <source>Forget the connection &quot;%1&quot;? Its database stays as it is.</source>
        <translation>Die Verbindung „%1“ vergessen? Ihre Datenbank bleibt, wie sie ist.</translation>
    </message>
    <message>
        <source>Remove connection</source>
        <translation>Verbindung entfernen</translation>
    </message>
    <message>
        <source>No connection is stored yet. Add stores the first one in %1</source>
        <translation>Noch ist keine Verbindung gespeichert. „Hinzufügen“ speichert die erste in %1</translation>
    </message>
</context>
<context>
    <name>connection_manager::DiagnosisView</name>
    <message>
        <source>Result of the test</source>
        <translation>Ergebnis des Tests</translation>
    </message>
    <message>
        <source>Testing &quot;%1&quot; ...</source>
        <translation>„%1“ wird getestet ...</translation>
    </message>
    <message>
        <source>The test of &quot;%1&quot; was stopped</source>
        <translation>Der Test von „%1“ wurde abgebrochen</translation>
    </message>
    <message>
        <source>&quot;%1&quot; does not work</source>
        <translation>„%1“ funktioniert nicht</translation>
    </message>
    <message>
        <source>&quot;%1&quot; works, within limits</source>
        <translation>„%1“ funktioniert eingeschränkt</translation>
    </message>
    <message>
        <source>&quot;%1&quot; works</source>
        <translation>„%1“ funktioniert</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>Eintrag</translation>
    </message>
    <message>
        <source>Host name</source>
        <translation>Rechnername</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>Port</translation>
    </message>
    <message>
        <source>Login</source>
        <translation>Anmeldung</translation>
    </message>
    <message>
        <source>Server</source>
        <translation>Server</translation>
    </message>
    <message>
        <source>Encryption</source>
        <translation>Verschlüsselung</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Database</source>
        <translation>Datenbank</translation>
    </message>
    <message>
        <source>Journal</source>
        <translation>Journal</translation>
    </message>
    <message>
        <source>Schema</source>
        <translation>Schema</translation>
    </message>
    <message>
        <source>Reading</source>
        <translation>Lesen</translation>
    </message>
    <message>
        <source>Writing</source>
        <translation>Schreiben</translation>
    </message>
    <message>
        <source>ok</source>
        <translation>gut</translation>
    </message>
    <message>
        <source>warning</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <source>failed</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>skipped</source>
        <translation>entfallen</translation>
    </message>
</context>
</TS>
