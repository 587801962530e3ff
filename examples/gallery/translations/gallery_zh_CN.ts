<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>ArchivePage</name>
    <message>
        <source>Extracted</source>
        <translation>已解压</translation>
    </message>
    <message>
        <source>Skipped: the file exists.</source>
        <translation>已跳过：文件已存在。</translation>
    </message>
    <message>
        <source>Failed: %1</source>
        <translation>失败：%1</translation>
    </message>
    <message>
        <source>Archive</source>
        <translation>压缩包</translation>
    </message>
    <message>
        <source>Extracts a whole zip archive in a separate thread. Use it only for archives that you trust.</source>
        <translation>在单独的线程中解压整个 zip 压缩包。只用于您信任的压缩包。</translation>
    </message>
    <message>
        <source>/path/of/archive.zip</source>
        <translation>/压缩包的/路径.zip</translation>
    </message>
    <message>
        <source>&amp;Overwrite existing files</source>
        <translation>覆盖已有文件(&amp;O)</translation>
    </message>
    <message>
        <source>E&amp;xtract</source>
        <translation>解压(&amp;X)</translation>
    </message>
    <message>
        <source>Nothing yet</source>
        <translation>尚未开始</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名称</translation>
    </message>
    <message>
        <source>Result</source>
        <translation>结果</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>大小</translation>
    </message>
    <message>
        <source>Each file of the archive will be listed here, with its result.</source>
        <translation>压缩包中的每个文件及其结果将列在这里。</translation>
    </message>
    <message>
        <source>&amp;Browse …</source>
        <translation>浏览(&amp;B)…</translation>
    </message>
    <message>
        <source>&amp;Archive</source>
        <translation>压缩包(&amp;A)</translation>
    </message>
    <message>
        <source>Entries</source>
        <translation>条目</translation>
    </message>
    <message>
        <source>Choose an archive</source>
        <translation>选择压缩包</translation>
    </message>
    <message>
        <source>Zip archives (*.zip)</source>
        <translation>Zip 压缩包 (*.zip)</translation>
    </message>
    <message>
        <source>Extracting</source>
        <translation>正在解压</translation>
    </message>
    <message>
        <source>Details: %1</source>
        <translation>详细信息：%1</translation>
    </message>
    <message>
        <source>Not extracted</source>
        <translation>未解压</translation>
    </message>
    <message>
        <source>%1
Details: %2</source>
        <translation>%1
详细信息：%2</translation>
    </message>
    <message>
        <source>%1 extracted, %2 skipped</source>
        <translation>已解压 %1 个，跳过 %2 个</translation>
    </message>
    <message>
        <source>%1, %2 failed</source>
        <translation>%1，失败 %2 个</translation>
    </message>
</context>
<context>
    <name>Checks</name>
    <message>
        <source>Status 404: the server has nothing at this address.</source>
        <translation>状态 404：服务器上没有这个地址的内容。</translation>
    </message>
    <message>
        <source>Status %1: the server denies access.</source>
        <translation>状态 %1：服务器拒绝访问。</translation>
    </message>
    <message>
        <source>Status %1: the server failed.</source>
        <translation>状态 %1：服务器出错。</translation>
    </message>
    <message>
        <source>Status %1: the server rejected the request.</source>
        <translation>状态 %1：服务器拒绝了请求。</translation>
    </message>
    <message>
        <source>Status %1: the server redirects, and the library does not follow.</source>
        <translation>状态 %1：服务器要求重定向，本库不跟随。</translation>
    </message>
    <message>
        <source>Status %1</source>
        <translation>状态 %1</translation>
    </message>
    <message>
        <source>There is a directory with this name.</source>
        <translation>已有同名目录。</translation>
    </message>
    <message>
        <source>%1 is not a directory.</source>
        <translation>%1 不是目录。</translation>
    </message>
    <message>
        <source>There is no permission to write to %1.</source>
        <translation>没有写入 %1 的权限。</translation>
    </message>
    <message>
        <source>There is no space left on the disk.</source>
        <translation>磁盘空间不足。</translation>
    </message>
    <message>
        <source>No archive was chosen.</source>
        <translation>尚未选择压缩包。</translation>
    </message>
    <message>
        <source>There is no such file: %1</source>
        <translation>没有这个文件：%1</translation>
    </message>
    <message>
        <source>This is a directory, not an archive.</source>
        <translation>这是目录，不是压缩包。</translation>
    </message>
    <message>
        <source>There is no permission to read the file.</source>
        <translation>没有读取该文件的权限。</translation>
    </message>
    <message>
        <source>The file is not a zip archive.</source>
        <translation>该文件不是 zip 压缩包。</translation>
    </message>
    <message>
        <source>The connection ended early.</source>
        <translation>连接提前结束。</translation>
    </message>
    <message>
        <source>There is no server of this name.</source>
        <translation>没有这个名称的服务器。</translation>
    </message>
    <message>
        <source>No server runs at this address.</source>
        <translation>这个地址上没有运行服务器。</translation>
    </message>
    <message>
        <source>The server does not answer.</source>
        <translation>服务器没有应答。</translation>
    </message>
    <message>
        <source>The server&apos;s certificate is not trusted.</source>
        <translation>服务器的证书不受信任。</translation>
    </message>
    <message>
        <source>The address begins with an unknown scheme.</source>
        <translation>地址开头的协议未知。</translation>
    </message>
    <message>
        <source>The archive is damaged.</source>
        <translation>压缩包已损坏。</translation>
    </message>
    <message>
        <source>It was not reached.</source>
        <translation>没有处理到这个条目。</translation>
    </message>
    <message>
        <source>It is damaged, encrypted or compressed in an unknown way.</source>
        <translation>它已损坏、已加密，或压缩方式未知。</translation>
    </message>
    <message>
        <source>The file is incomplete.</source>
        <translation>文件不完整。</translation>
    </message>
</context>
<context>
    <name>DownloadPage</name>
    <message>
        <source>Download</source>
        <translation>下载</translation>
    </message>
    <message>
        <source>Writes data of any size directly to a file.</source>
        <translation>把任意大小的数据直接写入文件。</translation>
    </message>
    <message>
        <source>&amp;Download</source>
        <translation>下载(&amp;D)</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>停止(&amp;S)</translation>
    </message>
    <message>
        <source>Nothing yet</source>
        <translation>尚未开始</translation>
    </message>
    <message>
        <source>Show in &amp;folder</source>
        <translation>在文件夹中显示(&amp;F)</translation>
    </message>
    <message>
        <source>File</source>
        <translation>文件</translation>
    </message>
    <message>
        <source>Outcome</source>
        <translation>结果</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>大小</translation>
    </message>
    <message>
        <source>Each download will be listed here.</source>
        <translation>每次下载都将列在这里。</translation>
    </message>
    <message>
        <source>&amp;Address</source>
        <translation>地址(&amp;A)</translation>
    </message>
    <message>
        <source>Downloads</source>
        <translation>下载记录</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>进度</translation>
    </message>
    <message>
        <source>Received</source>
        <translation>已接收</translation>
    </message>
    <message>
        <source>Average speed</source>
        <translation>平均速度</translation>
    </message>
    <message>
        <source>Running</source>
        <translation>正在下载</translation>
    </message>
    <message>
        <source>Not started</source>
        <translation>未开始</translation>
    </message>
    <message>
        <source>The address has no file name.</source>
        <translation>地址中没有文件名。</translation>
    </message>
    <message>
        <source>Stopped</source>
        <translation>已停止</translation>
    </message>
    <message>
        <source>The partial file was removed.</source>
        <translation>不完整的文件已删除。</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 / %2</translation>
    </message>
    <message>
        <source>Finished</source>
        <translation>已完成</translation>
    </message>
    <message>
        <source>Only %1 of %2 are in the file, so it was removed.</source>
        <translation>文件只有 %1（应为 %2），因此已删除。</translation>
    </message>
    <message>
        <source>Incomplete</source>
        <translation>不完整</translation>
    </message>
    <message>
        <source>Failed</source>
        <translation>失败</translation>
    </message>
    <message>
        <source>Looking for the cause …</source>
        <translation>正在查找原因……</translation>
    </message>
    <message>
        <source>Failed: %1</source>
        <translation>失败：%1</translation>
    </message>
    <message>
        <source>%1 The partial file was removed.</source>
        <translation>%1不完整的文件已删除。</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1：%2</translation>
    </message>
</context>
<context>
    <name>LogPage</name>
    <message>
        <source>File log</source>
        <translation>文件日志</translation>
    </message>
    <message>
        <source>Each line is in the file when the call returns, so a crash loses no line.</source>
        <translation>调用返回时该行已写入文件，因此崩溃不会丢失任何一行。</translation>
    </message>
    <message>
        <source>Text of a line</source>
        <translation>一行的内容</translation>
    </message>
    <message>
        <source>Log file</source>
        <translation>日志文件</translation>
    </message>
    <message>
        <source>Write a line</source>
        <translation>写一行</translation>
    </message>
    <message>
        <source>&amp;Message</source>
        <translation>消息(&amp;M)</translation>
    </message>
    <message>
        <source>Debug messages are not written to the file.</source>
        <translation>调试消息不写入文件。</translation>
    </message>
    <message>
        <source>The log is not written. %1</source>
        <translation>日志没有写入。%1</translation>
    </message>
    <message>
        <source>&amp;Info</source>
        <translation>信息(&amp;I)</translation>
    </message>
    <message>
        <source>&amp;Warning</source>
        <translation>警告(&amp;W)</translation>
    </message>
    <message>
        <source>&amp;Error</source>
        <translation>错误(&amp;E)</translation>
    </message>
    <message>
        <source>&amp;Debug</source>
        <translation>调试(&amp;D)</translation>
    </message>
</context>
<context>
    <name>MachinePage</name>
    <message>
        <source>Kylin</source>
        <translation>麒麟</translation>
    </message>
    <message>
        <source>UOS</source>
        <translation>统信 UOS</translation>
    </message>
    <message>
        <source>neither Kylin nor UOS</source>
        <translation>既不是麒麟也不是统信 UOS</translation>
    </message>
    <message>
        <source>No service returned a location</source>
        <translation>没有服务返回位置</translation>
    </message>
    <message>
        <source>%1 (%2, %3)</source>
        <translation>%1（%2，%3）</translation>
    </message>
    <message>
        <source>Names can be resolved</source>
        <translation>可以解析域名</translation>
    </message>
    <message>
        <source>Names cannot be resolved</source>
        <translation>无法解析域名</translation>
    </message>
    <message>
        <source>Yes, it is the default</source>
        <translation>是，它是默认应用程序</translation>
    </message>
    <message>
        <source>No, it is not the default</source>
        <translation>否，它不是默认应用程序</translation>
    </message>
    <message>
        <source>Machine</source>
        <translation>本机</translation>
    </message>
    <message>
        <source>Fast calls run at once. Calls that may block run in the background.</source>
        <translation>快速的调用立即执行，可能阻塞的调用在后台执行。</translation>
    </message>
    <message>
        <source>Desktop entry</source>
        <translation>桌面条目</translation>
    </message>
    <message>
        <source>Facts</source>
        <translation>系统信息</translation>
    </message>
    <message>
        <source>On request</source>
        <translation>按需查询</translation>
    </message>
    <message>
        <source>System</source>
        <translation>系统</translation>
    </message>
    <message>
        <source>Distribution</source>
        <translation>发行版</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1，%2</translation>
    </message>
    <message>
        <source>Processor</source>
        <translation>处理器</translation>
    </message>
    <message>
        <source>Package</source>
        <translation>软件包</translation>
    </message>
    <message>
        <source>Executable</source>
        <translation>可执行文件</translation>
    </message>
    <message>
        <source>Resources</source>
        <translation>资源目录</translation>
    </message>
    <message>
        <source>Identifier</source>
        <translation>标识符</translation>
    </message>
    <message>
        <source>&amp;Read</source>
        <translation>读取(&amp;R)</translation>
    </message>
    <message>
        <source>Location</source>
        <translation>位置</translation>
    </message>
    <message>
        <source>&amp;Locate</source>
        <translation>定位(&amp;L)</translation>
    </message>
    <message>
        <source>Network</source>
        <translation>网络</translation>
    </message>
    <message>
        <source>&amp;Test</source>
        <translation>测试(&amp;T)</translation>
    </message>
    <message>
        <source>&amp;Application</source>
        <translation>应用程序(&amp;A)</translation>
    </message>
    <message>
        <source>Chec&amp;k</source>
        <translation>检查(&amp;K)</translation>
    </message>
    <message>
        <source>Opens PDF</source>
        <translation>打开 PDF</translation>
    </message>
    <message>
        <source>Checking …</source>
        <translation>正在查询……</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Same as desktop</source>
        <translation>跟随桌面</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>浅色</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>深色</translation>
    </message>
    <message>
        <source>Reading the desktop …</source>
        <translation>正在读取桌面主题……</translation>
    </message>
    <message>
        <source>Start the local ser&amp;vices</source>
        <translation>启动本地服务(&amp;V)</translation>
    </message>
    <message>
        <source>ZyBase gallery</source>
        <extracomment>SPDX-License-Identifier: 0BSD is the licence of this catalogue.</extracomment>
        <translation>ZyBase 示例集</translation>
    </message>
    <message>
        <source>Pages</source>
        <translation>页面</translation>
    </message>
    <message>
        <source>ZyBase</source>
        <translation>ZyBase</translation>
    </message>
    <message>
        <source>All services in one window</source>
        <translation>一个窗口，所有服务</translation>
    </message>
    <message>
        <source>Colo&amp;urs</source>
        <translation>配色(&amp;U)</translation>
    </message>
    <message>
        <source>No local services run. They answer requests, offer files to download and show the reports that arrive, all on this machine.</source>
        <translation>本地服务没有运行。它们应答请求、提供可下载的文件，并显示收到的上报，这一切都在本机进行。</translation>
    </message>
    <message>
        <source>LOCAL_SERVICES is %1, which describes no running services.</source>
        <translation>LOCAL_SERVICES 的值是 %1，该文件没有描述正在运行的服务。</translation>
    </message>
    <message>
        <source>Starting the local services …</source>
        <translation>正在启动本地服务……</translation>
    </message>
    <message>
        <source>The local services have ended: %1</source>
        <translation>本地服务已结束：%1</translation>
    </message>
    <message>
        <source>The desktop is dark</source>
        <translation>桌面使用深色主题</translation>
    </message>
    <message>
        <source>The desktop is light</source>
        <translation>桌面使用浅色主题</translation>
    </message>
</context>
<context>
    <name>Page</name>
    <message>
        <source>Show the &amp;code</source>
        <translation>显示代码(&amp;C)</translation>
    </message>
    <message>
        <source>Code</source>
        <translation>代码</translation>
    </message>
    <message>
        <source>Cop&amp;y</source>
        <translation>复制(&amp;Y)</translation>
    </message>
    <message>
        <source>The page runs this code. Its licence, 0BSD, has no conditions.</source>
        <translation>本页运行的就是这段代码。它的许可证 0BSD 不附带任何条件。</translation>
    </message>
</context>
<context>
    <name>QrCodePage</name>
    <message>
        <source>QR code</source>
        <translation>二维码</translation>
    </message>
    <message>
        <source>Creates an image without a margin. The application adds the white margin for scanners.</source>
        <translation>生成的图像没有边距。扫描所需的白色边距由应用程序添加。</translation>
    </message>
    <message>
        <source>Text of the code</source>
        <translation>二维码的内容</translation>
    </message>
    <message>
        <source>&amp;Text</source>
        <translation>内容(&amp;T)</translation>
    </message>
    <message>
        <source>Si&amp;ze</source>
        <translation>大小(&amp;Z)</translation>
    </message>
    <message>
        <source>%1 × %1 pixels, with margin %2 × %2</source>
        <translation>%1 × %1 像素，含边距 %2 × %2</translation>
    </message>
    <message>
        <source>%1 of at most %2 bytes</source>
        <translation>%1 字节，最多 %2 字节</translation>
    </message>
    <message>
        <source>Enter a text</source>
        <translation>请输入内容</translation>
    </message>
    <message>
        <source>Too long: %1 bytes</source>
        <translation>过长：%1 字节</translation>
    </message>
</context>
<context>
    <name>ReportsPage</name>
    <message>
        <source>Usage reports</source>
        <translation>使用统计上报</translation>
    </message>
    <message>
        <source>Sends named events and signed records in the background. The outcome is not reported.</source>
        <translation>在后台发送命名事件和带签名的记录，不报告结果。</translation>
    </message>
    <message>
        <source>Nothing is sent</source>
        <translation>不发送任何内容</translation>
    </message>
    <message>
        <source>Reports are sent only to local services.</source>
        <translation>上报只发给本地服务。</translation>
    </message>
    <message>
        <source>&amp;Open the page</source>
        <translation>打开页面(&amp;O)</translation>
    </message>
    <message>
        <source>Label in the catalogue</source>
        <translation>事件目录中的标签</translation>
    </message>
    <message>
        <source>&amp;Send event</source>
        <translation>发送事件(&amp;S)</translation>
    </message>
    <message>
        <source>Send &amp;record</source>
        <translation>发送记录(&amp;R)</translation>
    </message>
    <message>
        <source>Report</source>
        <translation>上报</translation>
    </message>
    <message>
        <source>Details</source>
        <translation>详细信息</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>时间</translation>
    </message>
    <message>
        <source>Each report that you send will be listed here.</source>
        <translation>您发送的每条上报都将列在这里。</translation>
    </message>
    <message>
        <source>Event</source>
        <translation>事件</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>记录</translation>
    </message>
    <message>
        <source>Sent</source>
        <translation>已发送</translation>
    </message>
    <message>
        <source>&amp;Event</source>
        <translation>事件(&amp;E)</translation>
    </message>
    <message>
        <source>&amp;Label</source>
        <translation>标签(&amp;L)</translation>
    </message>
    <message>
        <source>&amp;Action</source>
        <translation>动作(&amp;A)</translation>
    </message>
    <message>
        <source>S&amp;tatus</source>
        <translation>状态(&amp;T)</translation>
    </message>
    <message>
        <source>Sent to the local services</source>
        <translation>发给本地服务</translation>
    </message>
    <message>
        <source>Arrivals are shown at %1</source>
        <translation>收到的内容显示在 %1</translation>
    </message>
    <message>
        <source>The local services have ended.</source>
        <translation>本地服务已结束。</translation>
    </message>
    <message>
        <source>not sent: %1</source>
        <translation>未发送：%1</translation>
    </message>
    <message>
        <source>It has no label in the catalogue, and none was entered.</source>
        <translation>它在事件目录中没有标签，也没有输入标签。</translation>
    </message>
    <message>
        <source>event: %1</source>
        <translation>事件：%1</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1，%2</translation>
    </message>
    <message>
        <source>record: %1</source>
        <translation>记录：%1</translation>
    </message>
</context>
<context>
    <name>RequestPage</name>
    <message>
        <source>Request</source>
        <translation>请求</translation>
    </message>
    <message>
        <source>Runs in the background and ends after ten seconds at most, always with one outcome.</source>
        <translation>在后台运行，最多十秒结束，结果恰好一个。</translation>
    </message>
    <message>
        <source>JSON body</source>
        <translation>JSON 正文</translation>
    </message>
    <message>
        <source>&amp;Send</source>
        <translation>发送(&amp;S)</translation>
    </message>
    <message>
        <source>Ca&amp;ncel</source>
        <translation>取消(&amp;N)</translation>
    </message>
    <message>
        <source>Nothing sent yet</source>
        <translation>尚未发送</translation>
    </message>
    <message>
        <source>Answer</source>
        <translation>应答</translation>
    </message>
    <message>
        <source>Outcome</source>
        <translation>结果</translation>
    </message>
    <message>
        <source>Me&amp;thod</source>
        <translation>方法(&amp;T)</translation>
    </message>
    <message>
        <source>&amp;Address</source>
        <translation>地址(&amp;A)</translation>
    </message>
    <message>
        <source>JSON &amp;body</source>
        <translation>JSON 正文(&amp;B)</translation>
    </message>
    <message>
        <source>The answer of the server will be here.</source>
        <translation>服务器的应答将显示在这里。</translation>
    </message>
    <message>
        <source>Not sent</source>
        <translation>未发送</translation>
    </message>
    <message>
        <source>The body is not a JSON object.</source>
        <translation>正文不是 JSON 对象。</translation>
    </message>
    <message>
        <source>Enter an address.</source>
        <translation>请输入地址。</translation>
    </message>
    <message>
        <source>Waiting</source>
        <translation>正在等待</translation>
    </message>
    <message>
        <source>Timeout</source>
        <translation>超时</translation>
    </message>
    <message>
        <source>There was no answer for ten seconds.</source>
        <translation>十秒内没有应答。</translation>
    </message>
    <message>
        <source>Cancelled</source>
        <translation>已取消</translation>
    </message>
    <message>
        <source>No answer</source>
        <translation>没有应答</translation>
    </message>
    <message>
        <source>Looking for the cause …</source>
        <translation>正在查找原因……</translation>
    </message>
    <message>
        <source>Answered</source>
        <translation>已应答</translation>
    </message>
    <message>
        <source>Answered with an error</source>
        <translation>应答为错误</translation>
    </message>
    <message>
        <source>Ended</source>
        <translation>已结束</translation>
    </message>
    <message>
        <source>The status of a POST is not reported.</source>
        <translation>POST 的状态不会报告。</translation>
    </message>
</context>
</TS>
