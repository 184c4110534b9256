// What a payload can ask its server for.

export const operations = ["poll", "reply", "off", "pwr", "script", "offdelay", "meta", "metadone", "rawpacket",
    "upload", "uploadlegacy", "jar"];
