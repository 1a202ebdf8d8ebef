<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>COpmMainPage</name>
    <message>
        <source>Setup</source>
        <translation>设置</translation>
    </message>
    <message>
        <source>Result</source>
        <translation>结果</translation>
    </message>
    <message>
        <source>Save Opm Result</source>
        <translation>保存光功率计结果</translation>
    </message>
</context>
<context>
    <name>COpmShowResultPage</name>
    <message>
        <source>Clear</source>
        <translation>清除</translation>
    </message>
</context>
<context>
    <name>NerioOpm</name>
    <message>
        <source>dBm</source>
        <translation>dBm</translation>
    </message>
    <message>
        <source>mW</source>
        <translation>mW</translation>
    </message>
    <message>
        <source>uW</source>
        <translation>uW</translation>
    </message>
    <message>
        <source>-60</source>
        <translation>-60</translation>
    </message>
    <message>
        <source>10</source>
        <translation>10</translation>
    </message>
    <message>
        <source>Ref.: 0 dBm</source>
        <translation>Ref.: 0 dBm</translation>
    </message>
    <message>
        <source>1</source>
        <translation>1</translation>
    </message>
</context>
<context>
    <name>OffsetBar</name>
    <message>
        <source>10</source>
        <translation>10</translation>
    </message>
    <message>
        <source>-60</source>
        <translation>-60</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Power Limits (mW)</source>
        <translation>功率门限 (mW)</translation>
    </message>
    <message>
        <source>Power Limits (uW)</source>
        <translation>功率门限 (uW)</translation>
    </message>
    <message>
        <source>Power Limits (dBm)</source>
        <translation>功率门限 (dBm)</translation>
    </message>
    <message>
        <source>OPM Not Connected!</source>
        <translation>光功率计未连接！</translation>
    </message>
    <message>
        <source>Optical Power Meter</source>
        <translation>光功率计</translation>
    </message>
    <message>
        <source>Wavelength</source>
        <translation>波长</translation>
    </message>
    <message>
        <source>Test Mode</source>
        <translation>测试模式</translation>
    </message>
    <message>
        <source>Power Meter(OPM)</source>
        <translation>光功率计(OPM)</translation>
    </message>
    <message>
        <source>Loss Meter</source>
        <translation>损耗测量</translation>
    </message>
    <message>
        <source>Hold</source>
        <translation>保持</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
    <message>
        <source>Reference</source>
        <translation>参考</translation>
    </message>
    <message>
        <source>Length (km)</source>
        <translation>长度 (km)</translation>
    </message>
    <message>
        <source>Minimum</source>
        <translation>最小值</translation>
    </message>
    <message>
        <source>Maximum</source>
        <translation>最大值</translation>
    </message>
    <message>
        <source>Optical Power</source>
        <translation>光功率</translation>
    </message>
    <message>
        <source>Loss Limits</source>
        <translation>损耗门限</translation>
    </message>
    <message>
        <source>File Name</source>
        <translation>文件名</translation>
    </message>
    <message>
        <source>File Name:</source>
        <translation>文件名：</translation>
    </message>
    <message>
        <source>Optical Power       	      Hold</source>
        <translation>光功率       	      保持</translation>
    </message>
    <message>
        <source>Loss Meter   Hold</source>
        <translation>损耗测量   保持</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>The length must be greater than zero! Please input again.</source>
        <translation>长度必须大于零！请重新输入。</translation>
    </message>
    <message>
        <source>Minimum must be less or equal to Maximum! Please input again.</source>
        <translation>最小值必须小于或等于最大值！请重新输入。</translation>
    </message>
    <message>
        <source>Reference Power Level</source>
        <translation>参考功率电平</translation>
    </message>
    <message>
        <source>Please use a short and clean optical patch cord to connect the
Laser Light Source directly to the OPM port on this unit,
to set the output reference level.
Press Set to store and use the current reading.</source>
        <translation>请用一根短而洁净的光纤跳线将激光光源
直接连接到本机的 OPM 端口，
以设置输出参考电平。
按“设定”保存并使用当前读数。</translation>
    </message>
    <message>
        <source>Set</source>
        <translation>设定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>General Information</source>
        <translation>基本信息</translation>
    </message>
    <message>
        <source>Date and Time Results Were Saved:</source>
        <translation>结果保存日期和时间：</translation>
    </message>
    <message>
        <source>Software Version:</source>
        <translation>软件版本：</translation>
    </message>
    <message>
        <source>MAC Address of Test Port:</source>
        <translation>测试端口 MAC 地址：</translation>
    </message>
    <message>
        <source>Serial Number of Test Set:</source>
        <translation>测试仪序列号：</translation>
    </message>
</context>
</TS>
