<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>ArchivePage</name>
    <message>
        <source>Extracted</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Skipped: the file exists.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Failed: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Archive</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Extracts a whole zip archive in a separate thread. Use it only for archives that you trust.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>/path/of/archive.zip</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Overwrite existing files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>E&amp;xtract</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nothing yet</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Result</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Size</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Each file of the archive will be listed here, with its result.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Browse …</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Archive</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Entries</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Choose an archive</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Zip archives (*.zip)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Extracting</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Details: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not extracted</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1
Details: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 extracted, %2 skipped</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1, %2 failed</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Checks</name>
    <message>
        <source>Status 404: the server has nothing at this address.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Status %1: the server denies access.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Status %1: the server failed.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Status %1: the server rejected the request.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Status %1: the server redirects, and the library does not follow.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Status %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There is a directory with this name.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is not a directory.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There is no permission to write to %1.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There is no space left on the disk.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No archive was chosen.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There is no such file: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This is a directory, not an archive.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There is no permission to read the file.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file is not a zip archive.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The connection ended early.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There is no server of this name.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No server runs at this address.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The server does not answer.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The server&apos;s certificate is not trusted.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The address begins with an unknown scheme.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The archive is damaged.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>It was not reached.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>It is damaged, encrypted or compressed in an unknown way.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file is incomplete.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DownloadPage</name>
    <message>
        <source>Download</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Writes data of any size directly to a file.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Download</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nothing yet</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show in &amp;folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>File</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Outcome</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Size</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Each download will be listed here.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Address</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Downloads</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Progress</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Received</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Average speed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Running</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not started</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The address has no file name.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stopped</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The partial file was removed.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Finished</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Only %1 of %2 are in the file, so it was removed.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Incomplete</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Failed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Looking for the cause …</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Failed: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 The partial file was removed.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>LogPage</name>
    <message>
        <source>File log</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Each line is in the file when the call returns, so a crash loses no line.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Text of a line</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Log file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Write a line</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Message</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Debug messages are not written to the file.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The log is not written. %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Info</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Warning</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Error</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Debug</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>MachinePage</name>
    <message>
        <source>Kylin</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>UOS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>neither Kylin nor UOS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No service returned a location</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 (%2, %3)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Names can be resolved</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Names cannot be resolved</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Yes, it is the default</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No, it is not the default</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Machine</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Fast calls run at once. Calls that may block run in the background.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Desktop entry</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Facts</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>On request</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>System</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Distribution</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Processor</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Package</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Executable</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Resources</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Identifier</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Read</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Location</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Locate</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Network</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Test</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Application</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Chec&amp;k</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Opens PDF</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Checking …</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Same as desktop</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Light</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Dark</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reading the desktop …</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Start the local ser&amp;vices</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>ZyBase gallery</source>
        <extracomment>SPDX-License-Identifier: 0BSD is the licence of this catalogue.</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pages</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>ZyBase</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>All services in one window</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Colo&amp;urs</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No local services run. They answer requests, offer files to download and show the reports that arrive, all on this machine.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>LOCAL_SERVICES is %1, which describes no running services.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Starting the local services …</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The local services have ended: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The desktop is dark</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The desktop is light</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Page</name>
    <message>
        <source>Show the &amp;code</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Code</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cop&amp;y</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The page runs this code. Its licence, 0BSD, has no conditions.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>QrCodePage</name>
    <message>
        <source>QR code</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Creates an image without a margin. The application adds the white margin for scanners.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Text of the code</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Text</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Si&amp;ze</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 × %1 pixels, with margin %2 × %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 of at most %2 bytes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Enter a text</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Too long: %1 bytes</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ReportsPage</name>
    <message>
        <source>Usage reports</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sends named events and signed records in the background. The outcome is not reported.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nothing is sent</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reports are sent only to local services.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Open the page</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Label in the catalogue</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Send event</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Send &amp;record</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Report</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Details</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Each report that you send will be listed here.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Event</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Record</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sent</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Event</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Label</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Action</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>S&amp;tatus</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sent to the local services</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Arrivals are shown at %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The local services have ended.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>not sent: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>It has no label in the catalogue, and none was entered.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>event: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>record: %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>RequestPage</name>
    <message>
        <source>Request</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Runs in the background and ends after ten seconds at most, always with one outcome.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>JSON body</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Send</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ca&amp;ncel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nothing sent yet</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Answer</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Outcome</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Me&amp;thod</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Address</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>JSON &amp;body</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The answer of the server will be here.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not sent</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The body is not a JSON object.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Enter an address.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Waiting</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Timeout</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There was no answer for ten seconds.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancelled</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No answer</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Looking for the cause …</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Answered</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Answered with an error</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ended</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The status of a POST is not reported.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
